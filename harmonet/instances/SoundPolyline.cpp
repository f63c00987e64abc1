// Creating and starting a group's sounds along a line.

#include "harmonet/engine/Messages.h"
#include "harmonet/instances/OrNothing.h"
#include "harmonet/instances/SndPolyline.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SndKernel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

namespace Quon
{

namespace
{

constexpr unsigned int maxAddSounds = 7;
constexpr float minUsefulAngle = 10.0F;
constexpr float halfTurn = 180.0F;
constexpr float fullTurn = 360.0F;
constexpr int samplesApart = 1000;

// Slightly less than requested, so that sources need not be at exact divisions of the circle.
float EaseAngle(float angle)
{
    struct Step
    {
        float above;
        float less;
    };
    constexpr Step steps[] = {{135.0F, 20.0F}, {90.0F, 15.0F}, {45.0F, 10.0F}, {10.0F, 5.0F}};
    const auto step = std::find_if(std::begin(steps), std::end(steps),
        [angle](const Step& candidate) { return angle > candidate.above; });
    return step != std::end(steps) ? angle - step->less : angle;
}

} // namespace

SourceLimits LimitSources(unsigned int numAddSounds, float minAngle)
{
    numAddSounds = std::min(numAddSounds, maxAddSounds);
    float angle = std::isfinite(minAngle) ? std::fabs(minAngle) : 0.0F;
    if (angle < minUsefulAngle) {
        numAddSounds = 0;
    }
    else {
        angle = std::fmod(angle, halfTurn);
    }
    const float maximum =
        angle > 0.0F ? std::trunc(fullTurn / angle) : std::numeric_limits<float>::infinity();
    if (static_cast<float>(numAddSounds) >= maximum) {
        numAddSounds = static_cast<unsigned int>(maximum) - 1;
    }
    return {numAddSounds, EaseAngle(angle)};
}

int Sound::New3DSound(const Vector3* points, unsigned int numPoints, const PString& name,
    const ResourceDatabase* db, unsigned int numAddSounds, float minAngle)
{
    constexpr unsigned int maxPoints = std::numeric_limits<int>::max();
    if (!points || numPoints == 0 || numPoints > maxPoints) {
        Report(MessageLevel::Error, "sound '", name, "' cannot be created along a line of ",
            points ? numPoints : 0, " points");
        return 0;
    }
    const int id = New3DSound(name, db, true);
    return id != 0 ? NewPolylineSound(id, points, numPoints, numAddSounds, minAngle) : 0;
}

int Sound::NewPolylineSound(
    int soundID, const Vector3* points, unsigned int numPoints, unsigned int numAddSounds, float minAngle)
{
    Snd3D* main = FindPlaced3D(soundID);
    if (!main) {
        return 0;
    }
    // The resource's code has already started it.
    if (main->IsPlaying() || theKernel->IsListed(*main)) {
        return soundID;
    }
    const SourceLimits limits = LimitSources(numAddSounds, minAngle);
    const int id = OrNothing(
        [&] { return MakePolyline(*main, points, numPoints, limits.numAddSounds + 1, limits.minAngle); });
    if (id == 0) {
        DeleteSound(soundID);
    }
    return id;
}

int Sound::MakePolyline(
    Snd3D& main, const Vector3* points, unsigned int numPoints, unsigned int numSources, float minAngle)
{
    // Deletes the unpublished copies if the line cannot be created.
    struct SourceIDs
    {
        Sound& group;
        unsigned int* ids;
        unsigned int count;
        ~SourceIDs()
        {
            for (unsigned int i = 1; ids && i < count; ++i) {
                group.DeleteSound(static_cast<int>(ids[i]));
            }
            Alloc::Delete(ids);
        }
    } sources{*this, static_cast<unsigned int*>(Alloc::New(numSources * sizeof(unsigned int))), 1};

    auto made = std::make_unique<SndPolyline>(main);
    // The whole line counts as one.
    made->SetLimitedBy(main.GetLimitedBy());
    main.SetLimitedBy(nullptr);
    main.AddFlags(FlagLooping | FlagSharedFXList | FlagPolylineSource | FlagInPause);
    made->AdoptSourceFX(main.GetThisFXList());
    main.ReserveExtras();
    sources.ids[0] = static_cast<unsigned int>(main.GetSoundID());
    for (unsigned int i = 1; i < numSources; ++i) {
        auto copy = std::make_unique<Snd3D>(main);
        copy->SetThisFXList(main.GetThisFXList());
        copy->SetStartSample(samplesApart * static_cast<int>(i));
        sources.ids[sources.count] = static_cast<unsigned int>(AddSound(copy.release()));
        ++sources.count;
    }
    made->Init(points, static_cast<int>(numPoints), sources.ids, static_cast<int>(numSources), minAngle);
    sources.ids = nullptr;
    return AddSound(made.release());
}

bool Sound::StartPolyline(SndPolyline& line)
{
    line.ShareFX();
    for (int i = 0; i < line.GetNumSounds(); ++i) {
        const int sourceID = static_cast<int>(line.GetSourceID(i));
        SndBase* source = FindSound(sourceID);
        // It is already running if an earlier start failed partway.
        if (!source || source->IsPlaying()) {
            continue;
        }
        if (!theKernel->PlaySound(source)) {
            return false;
        }
        source = FindSound(sourceID);
        if (i == 0 && source) {
            line.SetSoundLength(source->GetSoundLength());
        }
    }
    if (line.IsPaused()) {
        theKernel->NotePauses();
    }
    return theKernel->EmulateSound(&line);
}

int Sound::GetSoundPlaces(int id, Vector3* places, int maxPlaces) const
{
    const SndBase* sound = FindSound(id);
    return sound && sound->IsPolyline() ? static_cast<const SndPolyline*>(sound)->GetPlaces(places, maxPlaces)
                                        : 0;
}

} // namespace Quon
