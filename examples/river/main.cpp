// Draws where a sound along a line is heard from: river SOUNDS OUT.svg. A listener walks along the river of
// the definition river.sound.txt in the folder SOUNDS. After each step the program queries the positions of
// the sources.

#include "examples/river/Picture.h"

#include "harmonet/definitions/SoundDefResource.h"
#include "harmonet/engine/OS.h"
#include "harmonet/engine/ResourceDatabase.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/QuonGetPlugins.h"
#include "harmonet/kernel/SoundSystem.h"

#include <cstdio>
#include <fstream>

namespace
{

constexpr const char* riverName = "river.sound.txt";
constexpr float frameSeconds = 0.05F;
constexpr int maxPlaces = 8;

constexpr Quon::Vector3 path[] = {{-96, 0, -36}, {-66, 0, -16}, {-42, 0, -12}, {-6, 0, 6}, {16, 0, 0},
    {36, 0, 12}, {64, 0, -12}, {94, 0, -14}};

std::vector<Quon::Vector3> ReadRiver(const Quon::ResourceDatabase& database)
{
    std::vector<Quon::Vector3> points;
    const auto* resource = static_cast<const Quon::SoundDefResource*>(database.Lookup(riverName, 0));
    if (!resource) {
        return points;
    }
    if (resource->Lock(&database).IsOk()) {
        points.assign(resource->GetPolyline(), resource->GetPolyline() + resource->GetNumPoints());
        resource->Unlock();
    }
    resource->ReleaseReference();
    return points;
}

std::vector<River::Step> Walk(const Quon::ResourceDatabase& database)
{
    Quon::Microphone listener;
    listener.Activate();
    Quon::Sound sounds;
    const int river = sounds.New3DSound(riverName, &database);
    std::vector<River::Step> steps;
    if (!sounds.StartSound(river, 0)) {
        return steps;
    }
    for (const Quon::Vector3& place : path) {
        listener.SetPosition(place);
        Quon::TaskList::Get().Update(frameSeconds);
        Quon::Vector3 places[maxPlaces];
        const int count = sounds.GetSoundPlaces(river, places, maxPlaces);
        steps.push_back({place, {places, places + count}});
    }
    return steps;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 3) {
        std::fprintf(stderr, "usage: river SOUNDS OUT.svg\n");
        return 2;
    }
    // No audible output is needed.
    Quon::OS os;
    os.GetOptions()->Set("Sound", "HarmonetNull");
    QuonGetPlugins();
    Quon::ResourceDatabase database;
    Quon::SoundSystem system;
    if (!database.AddFolder("river", arguments[1]) || !system.Init(&os, false)) {
        std::fprintf(stderr, "river: there is no folder '%s', or no driver\n", arguments[1]);
        return 1;
    }
    const std::vector<River::Step> steps = Walk(database);
    std::ofstream out(arguments[2]);
    out << River::Draw(ReadRiver(database), steps);
    out.close();
    if (steps.empty() || !out) {
        std::fprintf(stderr, "river: the river cannot be played, or '%s' cannot be written\n", arguments[2]);
        return 1;
    }
    return 0;
}
