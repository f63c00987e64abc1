#include "tools/harmonet/DefinitionInfo.h"

#include "harmonet/definitions/EffectKeywords.h"
#include "tools/harmonet/Format.h"
#include "tools/harmonet/Output.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstring>

namespace Tool
{

namespace
{

using Json = nlohmann::ordered_json;

/// One line of the description and one member of its JSON.
struct Setting
{
    const char* label;
    std::string text;
    const char* key;
    Json value;
};

std::string Yes(bool on)
{
    return on ? "yes" : "no";
}

std::string Format(const Quon::Vector3& place)
{
    return FormatNumber(place.x) + ' ' + FormatNumber(place.y) + ' ' + FormatNumber(place.z);
}

/// Returns the number as written in the definition, without the extra digits of a float.
double Rounded(double number)
{
    return std::stod(FormatNumber(number));
}

Json ToJson(const Quon::Vector3& place)
{
    return {Rounded(place.x), Rounded(place.y), Rounded(place.z)};
}

/// `consequence` is what a sound does if the gain is out of range and ignored.
std::string FormatGain(float gain, const std::string& consequence)
{
    const bool isIgnored = gain < 0.0F || gain > 1.0F;
    return FormatNumber(gain) + (isIgnored ? ", out of range and ignored: " + consequence : "");
}

std::string FormatFrequency(const Quon::SoundDefResource& sound)
{
    const std::string rate =
        sound.GetFrequency() != 0 ? std::to_string(sound.GetFrequency()) + " Hz" : "same as the file";
    return rate + (sound.GetChgFrequency() ? ", can change" : "");
}

double ReadField(const Quon::EffectField& field, const void* record)
{
    const auto* place = static_cast<const unsigned char*>(record) + field.offset;
    std::int32_t whole = 0;
    float number = 0.0F;
    std::memcpy(&whole, place, sizeof whole);
    std::memcpy(&number, place, sizeof number);
    return field.isInt ? whole : number;
}

Setting DescribeEffect(const Quon::SndFXDesc& effect)
{
    const Quon::EffectKeywords& keywords = Quon::GetEffectKeywords(effect.effect);
    std::string fields;
    Json values = Json::object();
    for (const Quon::EffectField& field : keywords.fields) {
        const std::string keyword(field.keyword.GetView());
        const double value = ReadField(field, effect.GetRecord());
        fields += (fields.empty() ? "" : "  ") + keyword + ' ' + FormatNumber(value);
        values[keyword] = Rounded(value);
    }
    return {keywords.keyword.GetText(), fields, "effects", {{keywords.keyword.GetText(), values}}};
}

void AddLine(const Quon::SoundDefResource& sound, std::vector<Setting>& settings)
{
    Json points = Json::array();
    for (int i = 0; i < sound.GetNumPoints(); ++i) {
        points.push_back(ToJson(sound.GetPolyline()[i]));
    }
    settings.push_back({"line",
        std::to_string(sound.GetNumPoints()) + " points, " + std::to_string(sound.GetNumAddSounds()) +
            " additional sounds, angle " + FormatNumber(sound.GetMinAngle()),
        "line",
        {{"points", points}, {"additionalSounds", sound.GetNumAddSounds()},
            {"angle", Rounded(sound.GetMinAngle())}}});
    for (int i = 0; i < sound.GetNumPoints(); ++i) {
        settings.push_back({"", Format(sound.GetPolyline()[i]), nullptr, nullptr});
    }
}

void AddVariation(const Quon::SoundVariation& variation, std::vector<Setting>& settings)
{
    if (!variation.variants.empty()) {
        const bool isRandom = variation.order == Quon::VariantOrder::Random;
        Json names = Json::array();
        std::string text;
        for (const Quon::PString& variant : variation.variants) {
            names.push_back(std::string(variant.GetView()));
            text += (text.empty() ? "" : ", ") + std::string(variant.GetView());
        }
        settings.push_back({"variants", text + (isRandom ? ", at random" : ", in turn"), "variants",
            {{"soundFiles", names}, {"order", isRandom ? "random" : "sequence"}}});
    }
    const auto addRange = [&settings](const char* label, const char* unit, const char* key, float minimum,
                              float maximum) {
        settings.push_back({label, FormatNumber(minimum) + " to " + FormatNumber(maximum) + unit, key,
            {{"minimum", Rounded(minimum)}, {"maximum", Rounded(maximum)}}});
    };
    if (variation.VariesGain()) {
        addRange("gain range", " dB", "gainRangeDecibels", variation.minGainDb, variation.maxGainDb);
    }
    if (variation.VariesFrequency()) {
        addRange("rate range", " times the rate", "rateFactor", variation.minFrequencyFactor,
            variation.maxFrequencyFactor);
    }
}

void AddLimits(const Quon::SoundLimits& limits, std::vector<Setting>& settings)
{
    constexpr const char* words[] = {"oldest", "quietest", "none"};
    if (limits.maxInstances > 0) {
        const char* const word = words[static_cast<std::size_t>(limits.stealing)];
        settings.push_back(
            {"instances", "at most " + std::to_string(limits.maxInstances) + ", stealing " + word,
                "instances", {{"maximum", limits.maxInstances}, {"stealing", word}}});
    }
    if (limits.minIntervalMs > 0) {
        settings.push_back({"interval", "at minimum " + std::to_string(limits.minIntervalMs) + " ms",
            "minimumIntervalMs", limits.minIntervalMs});
    }
}

std::vector<Setting> DescribeEffects(const Quon::SoundDefResource& sound)
{
    std::vector<Setting> described;
    const Quon::SndFXList effects = sound.GetFXList();
    const unsigned char* place = effects.GetEffectsArr();
    for (unsigned long left = effects.GetNumEffects(); left > 0; --left) {
        const auto& effect = *reinterpret_cast<const Quon::SndFXDesc*>(place);
        described.push_back(DescribeEffect(effect));
        place += sizeof effect + effect.size;
    }
    return described;
}

std::string FormatLoopRegion(const Quon::SoundDefResource& sound)
{
    if (sound.GetLoopStart() == 0 && sound.GetLoopEnd() == 0) {
        return "the whole file";
    }
    return "sample frames " + std::to_string(sound.GetLoopStart()) + " to " +
        (sound.GetLoopEnd() != 0 ? std::to_string(sound.GetLoopEnd()) : "the end");
}

std::vector<Setting> DescribeSettings(const Quon::SoundDefResource& sound)
{
    const std::string file(sound.GetFileName().GetView());
    std::vector<Setting> settings = {{"sound file", file, "soundFile", file},
        {"looping", Yes(sound.GetLooping()), "looping", sound.GetLooping()},
        {"loop region", FormatLoopRegion(sound), "loopRegion",
            {{"start", sound.GetLoopStart()}, {"end", sound.GetLoopEnd()}}},
        {"gain", FormatGain(sound.GetGain(), "the sound plays at gain 1"), "gain", Rounded(sound.GetGain())},
        {"low-pass", FormatGain(sound.GetLowPass(), "the sound is not filtered"), "lowPass",
            Rounded(sound.GetLowPass())},
        {"delay", std::to_string(sound.GetDelay()) + " ms", "delayMs", sound.GetDelay()},
        {"distances",
            FormatNumber(sound.GetMinDistance()) + " to " + FormatNumber(sound.GetMaxDistance()) +
                (sound.GetCutout() ? ", cut out beyond" : ""),
            "distances",
            {{"minimum", Rounded(sound.GetMinDistance())}, {"maximum", Rounded(sound.GetMaxDistance())},
                {"cutout", sound.GetCutout()}}},
        {"cone",
            FormatNumber(sound.GetInnerConeAngle()) + " to " + FormatNumber(sound.GetOuterConeAngle()) +
                " degrees, gain outside " + FormatNumber(sound.GetConeGain()),
            "cone",
            {{"innerAngle", Rounded(sound.GetInnerConeAngle())},
                {"outerAngle", Rounded(sound.GetOuterConeAngle())},
                {"gainOutside", Rounded(sound.GetConeGain())}}},
        {"doppler", FormatNumber(sound.GetDoppler()), "doppler", Rounded(sound.GetDoppler())},
        {"position", Format(sound.GetPosition()), "position", ToJson(sound.GetPosition())},
        {"rate", FormatFrequency(sound), "rate",
            {{"hertz", sound.GetFrequency()}, {"canChange", sound.GetChgFrequency()}}},
        {"listener's effects", sound.GetDisableMicFX() ? "do not apply" : "apply", "listenerEffects",
            !sound.GetDisableMicFX()}};
    if (sound.GetVariation().VariesAnything()) {
        AddVariation(sound.GetVariation(), settings);
    }
    if (sound.GetLimits().LimitsAnything()) {
        AddLimits(sound.GetLimits(), settings);
    }
    if (sound.GetPolyline()) {
        AddLine(sound, settings);
    }
    return settings;
}

void Load(DefinitionFile& file, const std::string& path)
{
    if (!file.Load()) {
        throw ToolError("'" + path + "' does not load; `harmonet check` shows why", ExitCode::BadInput);
    }
}

void PrintSettings(const std::vector<Setting>& settings)
{
    constexpr std::size_t labelWidth = 19;
    for (const Setting& setting : settings) {
        std::string label = setting.label;
        label.resize(std::max(label.size(), labelWidth), ' ');
        Print("  " + label + ' ' + setting.text + '\n');
    }
}

} // namespace

void PrintDefinition(const std::string& path)
{
    DefinitionFile file(path, "");
    Load(file, path);
    Print(path + '\n');
    PrintSettings(DescribeSettings(file.GetSettings()));
    PrintSettings(DescribeEffects(file.GetSettings()));
}

Json DescribeDefinition(const std::string& path)
{
    DefinitionFile file(path, "");
    Load(file, path);
    Json description = {{"file", path}};
    for (const Setting& setting : DescribeSettings(file.GetSettings())) {
        if (setting.key) {
            description[setting.key] = setting.value;
        }
    }
    description["effects"] = Json::object();
    for (const Setting& effect : DescribeEffects(file.GetSettings())) {
        description["effects"].update(effect.value);
    }
    return description;
}

} // namespace Tool
