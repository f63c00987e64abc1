#include "tools/harmonet/DefinitionInfo.h"

#include "harmonet/definitions/EffectKeywords.h"
#include "tools/harmonet/Format.h"
#include "tools/harmonet/ToolError.h"

#include <cstdio>
#include <cstring>

namespace Tool
{

namespace
{

void PrintSetting(const char* name, const std::string& value)
{
    std::printf("  %-19s %s\n", name, value.c_str());
}

std::string Yes(bool on)
{
    return on ? "yes" : "no";
}

std::string Format(const Quon::Vector3& place)
{
    return FormatNumber(place.x) + ' ' + FormatNumber(place.y) + ' ' + FormatNumber(place.z);
}

std::string FormatFrequency(const Quon::SoundDefResource& sound)
{
    const std::string rate =
        sound.GetFrequency() != 0 ? std::to_string(sound.GetFrequency()) + " Hz" : "that of the file";
    return rate + (sound.GetChgFrequency() ? ", can change" : "");
}

std::string FormatField(const Quon::EffectField& field, const void* record)
{
    const auto* place = static_cast<const unsigned char*>(record) + field.offset;
    std::int32_t whole = 0;
    float number = 0.0F;
    std::memcpy(&whole, place, sizeof whole);
    std::memcpy(&number, place, sizeof number);
    return std::string(field.keyword.GetView()) + ' ' + FormatNumber(field.isInt ? whole : number);
}

void PrintEffect(const Quon::SndFXDesc& effect)
{
    const Quon::EffectKeywords& keywords = Quon::GetEffectKeywords(effect.effect);
    std::string fields;
    for (const Quon::EffectField& field : keywords.fields)
        fields += (fields.empty() ? "" : "  ") + FormatField(field, effect.GetRecord());
    PrintSetting(keywords.keyword.GetText(), fields);
}

void PrintLine(const Quon::SoundDefResource& sound)
{
    PrintSetting("line",
        std::to_string(sound.GetNumPoints()) + " points, " + std::to_string(sound.GetNumAddSounds()) +
            " additional sounds, angle " + FormatNumber(sound.GetMinAngle()));
    for (int i = 0; i < sound.GetNumPoints(); ++i)
        PrintSetting("", Format(sound.GetPolyline()[i]));
}

} // namespace

void PrintDefinition(const std::string& path)
{
    DefinitionFile file(path, "");
    if (!file.Load())
        throw ToolError("'" + path + "' does not load; harmonet check tells why");
    const Quon::SoundDefResource& sound = file.GetSettings();
    std::printf("%s\n", path.c_str());
    PrintSetting("sound file", std::string(sound.GetFileName().GetView()));
    PrintSetting("looping", Yes(sound.GetLooping()));
    PrintSetting("gain", FormatNumber(sound.GetGain()));
    PrintSetting("delay", std::to_string(sound.GetDelay()) + " ms");
    PrintSetting("distances",
        FormatNumber(sound.GetMinDistance()) + " to " + FormatNumber(sound.GetMaxDistance()) +
            (sound.GetCutout() ? ", cut out beyond" : ""));
    PrintSetting("cone",
        FormatNumber(sound.GetInnerConeAngle()) + " to " + FormatNumber(sound.GetOuterConeAngle()) +
            " degrees, gain outside " + FormatNumber(sound.GetConeGain()));
    PrintSetting("position", Format(sound.GetPosition()));
    PrintSetting("rate", FormatFrequency(sound));
    PrintSetting("listener's effects", sound.GetDisableMicFX() ? "do not apply" : "apply");
    if (sound.GetPolyline())
        PrintLine(sound);
    const Quon::SndFXList effects = sound.GetFXList();
    const unsigned char* place = effects.GetEffectsArr();
    for (unsigned long left = effects.GetNumEffects(); left > 0; --left) {
        const auto& effect = *reinterpret_cast<const Quon::SndFXDesc*>(place);
        PrintEffect(effect);
        place += sizeof effect + effect.size;
    }
}

} // namespace Tool
