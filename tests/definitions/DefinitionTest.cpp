#include "tests/definitions/DefinitionTest.h"

#include "harmonet/definitions/SndFXList.h"

#include <cstring>

namespace Quon
{

namespace
{

constexpr const char* fileName = "a.sound.txt";

struct EffectLayout
{
    const char* name;
    const char* fields; ///< i for an integer, f for a float.
};

// The layouts of the records, by SndFX.
constexpr EffectLayout layouts[] = {{"envreverb", "iifffififfff"}, {"chorus", "ffffifi"},
    {"flanger", "ffffifi"}, {"echo", "ffffi"}, {"distortion", "fffff"}, {"compressor", "ffffff"},
    {"parameq", "fff"}, {"gargle", "ii"}, {"wavesreverb", "ffff"}};

std::string DescribeEffect(const SndFXDesc& desc)
{
    const EffectLayout& layout = layouts[desc.effect];
    std::string text = layout.name;
    if (desc.effect == SndFXEnvReverb) {
        text += '/' + std::to_string(desc.GetQuality());
    }
    const auto* record = static_cast<const unsigned char*>(desc.GetRecord());
    char separator = '(';
    for (const char* field = layout.fields; *field; ++field, record += 4) {
        std::int32_t whole;
        float number;
        std::memcpy(&whole, record, sizeof whole);
        std::memcpy(&number, record, sizeof number);
        text += separator + (*field == 'i' ? std::to_string(whole) : ToText(number));
        separator = ' ';
    }
    return text + ')';
}

std::string DescribeLine(const SoundResource& sound)
{
    std::string text =
        "line(" + std::to_string(sound.GetNumAddSounds()) + ' ' + ToText(sound.GetMinAngle()) + ':';
    for (int i = 0; i < sound.GetNumPoints(); ++i) {
        text += ' ' + ToText(sound.GetPolyline()[i]);
    }
    return text + ')';
}

struct Description
{
    void Add(const std::string& name, float value, float normal)
    {
        if (value != normal) {
            Add(name + ' ' + ToText(value));
        }
    }
    void Add(const std::string& part) { text += (text.empty() ? "" : ", ") + part; }

    std::string text;
};

void DescribeVariation(const SoundResource& sound, Description& text)
{
    const SoundVariation& variation = sound.GetVariation();
    if (!variation.variants.empty()) {
        std::string files = variation.order == VariantOrder::Random ? "or" : "then";
        for (const PString& variant : variation.variants) {
            files += ' ' + std::string(variant.GetView());
        }
        text.Add(files);
    }
    else {
        EXPECT_EQ(variation.order, VariantOrder::Random);
    }
    const auto addRange = [&text](const char* name, float least, float most) {
        text.Add(name + ToText(least) + " to " + ToText(most));
    };
    if (variation.VariesGain()) {
        addRange("dB ", variation.minGainDb, variation.maxGainDb);
    }
    if (variation.VariesFrequency()) {
        addRange("rate ", variation.minFrequencyFactor, variation.maxFrequencyFactor);
    }
    const SoundLimits& limits = sound.GetLimits();
    if (limits.maxInstances != 0 || limits.stealing != SoundStealing::Oldest) {
        constexpr const char* words[] = {" oldest", " quietest", " none"};
        text.Add(
            "instances " + std::to_string(limits.maxInstances) + words[static_cast<int>(limits.stealing)]);
    }
    text.Add("interval", static_cast<float>(limits.minIntervalMs), 0);
}

} // namespace

std::string Describe(const SoundResource& sound)
{
    Description text{std::string(sound.GetFileName().GetView())};
    text.Add("looping", sound.GetLooping(), 0);
    text.Add("loop start", sound.GetLoopStart(), 0);
    text.Add("loop end", sound.GetLoopEnd(), 0);
    text.Add("gain", sound.GetGain(), 1.0F);
    text.Add("lowpass", sound.GetLowPass(), 1.0F);
    text.Add("delay", static_cast<float>(sound.GetDelay()), 0);
    text.Add("min", sound.GetMinDistance(), 10.0F);
    text.Add("max", sound.GetMaxDistance(), 500.0F);
    text.Add("cutout", sound.GetCutout(), 1);
    text.Add("inner", sound.GetInnerConeAngle(), 180.0F);
    text.Add("outer", sound.GetOuterConeAngle(), 180.0F);
    text.Add("conegain", sound.GetConeGain(), 1.0F);
    text.Add("doppler", sound.GetDoppler(), 1.0F);
    if (!(sound.GetPosition() == Vector3())) {
        text.Add("at " + ToText(sound.GetPosition()));
    }
    text.Add("changing", sound.GetChgFrequency(), 0);
    text.Add("hz", static_cast<float>(sound.GetFrequency()), 0);
    text.Add("dry", sound.GetDisableMicFX(), 0);
    EXPECT_EQ(sound.GetNumPoints() == 0, sound.GetPolyline() == nullptr);
    if (sound.GetPolyline() || sound.GetNumAddSounds() != 0 || sound.GetMinAngle() != 45.0F) {
        text.Add(DescribeLine(sound));
    }
    DescribeVariation(sound, text);
    const SndFXList effects = sound.GetFXList();
    const unsigned char* place = effects.GetEffectsArr();
    for (unsigned long i = 0; i < effects.GetNumEffects(); ++i) {
        const auto& desc = *reinterpret_cast<const SndFXDesc*>(place);
        text.Add(DescribeEffect(desc));
        place += 8 + desc.size;
    }
    return text.text;
}

DefinitionTest::DefinitionTest()
{
    EXPECT_TRUE(database.AddFolder("sounds", folder.GetPath().string().c_str()));
}

DefinitionTest::~DefinitionTest() = default;

std::string DefinitionTest::Load(const std::string& text)
{
    folder.Write(fileName, text);
    if (!definition) {
        definition = std::make_unique<SoundDefResource>(fileName, &database);
    }
    const int code = LoadAgain();
    return std::to_string(code) + ": " + Describe(*definition);
}

std::string DefinitionTest::LoadBlock(const std::string& keywords)
{
    return Load("*SOUND_DEFINITION {\n*FILE a.wav\n" + keywords + "\n}\n");
}

int DefinitionTest::LoadAgain()
{
    std::string path = fileName;
    return definition->LoadTxt(&database, path.data()).GetCode();
}

void DefinitionTest::Forget()
{
    definition.reset();
}

} // namespace Quon
