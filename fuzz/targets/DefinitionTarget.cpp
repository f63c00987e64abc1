#include "fuzz/FuzzTarget.h"
#include "fuzz/targets/SharedFolder.h"
#include "harmonet/definitions/SoundDefResource.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SoundSystem.h"

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace Quon
{

namespace
{

constexpr const char* inputName = "fuzz.sound.txt";

/// Returns all settings as bytes, because NaN does not compare equal to itself.
std::vector<unsigned char> TakeSettings(const SoundResource& sound)
{
    std::vector<unsigned char> bytes;
    const auto add = [&bytes](const auto& value) {
        const auto* first = reinterpret_cast<const unsigned char*>(&value);
        bytes.insert(bytes.end(), first, first + sizeof value);
    };
    for (const bool flag :
        {sound.GetCutout(), sound.GetLooping(), sound.GetChgFrequency(), sound.GetDisableMicFX()}) {
        add(flag);
    }
    for (const float number :
        {sound.GetGain(), sound.GetInnerConeAngle(), sound.GetOuterConeAngle(), sound.GetConeGain(),
            sound.GetMinDistance(), sound.GetMaxDistance(), sound.GetMinAngle(), sound.GetPosition().x,
            sound.GetPosition().y, sound.GetPosition().z, sound.GetLowPass(), sound.GetDoppler()}) {
        add(number);
    }
    for (const int number :
        {sound.GetFrequency(), sound.GetDelay(), sound.GetNumAddSounds(), sound.GetNumPoints()}) {
        add(number);
    }
    for (int i = 0; i < sound.GetNumPoints(); ++i) {
        add(sound.GetPolyline()[i]);
    }
    const SoundVariation& variation = sound.GetVariation();
    for (const float number : {variation.minGainDb, variation.maxGainDb, variation.minFrequencyFactor,
             variation.maxFrequencyFactor}) {
        add(number);
    }
    for (const int number : {static_cast<int>(variation.variants.size()), static_cast<int>(variation.order),
             sound.GetLimits().maxInstances, static_cast<int>(sound.GetLimits().stealing),
             sound.GetLimits().minIntervalMs}) {
        add(number);
    }
    const SndFXList effects = sound.GetFXList();
    const unsigned char* place = effects.GetEffectsArr();
    for (unsigned long i = 0; i < effects.GetNumEffects(); ++i) {
        SndFXDesc head;
        std::memcpy(&head, place, sizeof head);
        Require(head.effect < numResourceFX, "a definition names nine effects");
        bytes.insert(bytes.end(), place, place + sizeof head + head.size);
        place += sizeof head + head.size;
    }
    return bytes;
}

class Listener final : public DefinitionListener
{
public:
    void OnRemark(const DefinitionRemark& remark) override
    {
        length += remark.keyword.GetView().size() + std::string_view(remark.text ? remark.text : "").size() +
            std::string_view(remark.found ? remark.found : "").size();
    }

private:
    std::size_t length = 0;
};

/// Checks what must hold for any definition, loaded or not.
void CheckSettings(const SoundResource& sound)
{
    Require(sound.GetNumPoints() == 0 || sound.GetNumPoints() >= 2, "a line has at least two points");
    Require((sound.GetNumPoints() == 0) == (sound.GetPolyline() == nullptr), "no points, no line");
    for (int i = 0; i < sound.GetNumPoints(); ++i) {
        const Vector3& point = sound.GetPolyline()[i];
        Require(std::isfinite(point.x + point.y + point.z), "points are finite");
    }
    Require(std::isfinite(sound.GetGain()), "the gain is finite");
    Require(sound.GetDelay() >= 0 && sound.GetNumAddSounds() >= 0, "counts are not negative");
    const int hz = sound.GetFrequency();
    Require(hz == 0 || (hz >= 100 && hz <= 100000), "a rate is in its range");
    Require(!sound.GetChgFrequency() || sound.GetFXList().GetNumEffects() == 0, "effects fix the rate");
}

int Load(const SoundDefResource& definition, const ResourceDatabase& database)
{
    std::string path = inputName;
    return definition.LoadTxt(&database, path.data()).GetCode();
}

/// Every load must give the same result, with and without a listener.
void CheckLoading(const ResourceDatabase& database)
{
    const SoundDefResource definition(inputName, &database);
    const int code = Load(definition, database);
    const auto settings = TakeSettings(definition);
    Require(code == 0 || code == 1, "a load returns 0 or 1");
    CheckSettings(definition);

    Listener listener;
    DefinitionListener* const before = SoundDefResource::SetListener(&listener);
    const SoundDefResource other(inputName, &database);
    const int otherCode = Load(other, database);
    SoundDefResource::SetListener(before);
    Require(code == otherCode && settings == TakeSettings(other), "a second load gives the same");
}

void Play(const ResourceDatabase& database)
{
    Microphone microphone;
    microphone.Activate();
    Sound group;
    const Sound::Settings settings;
    group.Play2DSound(inputName, &database, 0, 0, 0);
    group.Play3DSound(Vector3{1.0F, 2.0F, 3.0F}, inputName, &database, 0, 0, settings, 0);
    group.StartSound(group.New3DSound(inputName, &database), Sound::StartImmediately);
    for (int i = 0; i < 6; ++i) {
        microphone.SetPosition({static_cast<float>(i), 0.0F, 0.0F});
        TaskList::Get().Update(i < 4 ? 0.05F : 2.0F);
    }
}

} // namespace

void FuzzDefinition(FuzzBytes bytes)
{
    GameFolder& folder = GetSharedFolder();
    folder.Write(inputName, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    // The keywords exist after the system has started.
    SoundSystem system;
    Require(system.Init(&folder.GetOS(), false), "the system starts");
    CheckLoading(folder.GetDatabase());
    Play(folder.GetDatabase());
    system.Done();
    folder.DropResources();
}

} // namespace Quon
