#include "harmonet/definitions/SoundDefResource.h"

#include "harmonet/definitions/DefinitionMessages.h"
#include "harmonet/definitions/DefinitionReport.h"
#include "harmonet/definitions/EffectKeywords.h"
#include "harmonet/definitions/VariationKeywords.h"
#include "harmonet/engine/BlockReader.h"
#include "harmonet/engine/File.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/kernel/HarmonetStrings.h"
#include "harmonet/output/SndChannel.h"

#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace Quon
{

namespace
{

using Keys = HarmonetStrings;

constexpr std::size_t coordinatesPerPoint = 3;
constexpr std::size_t minPoints = 2;

constexpr double maxFloat = std::numeric_limits<float>::max();
constexpr double maxInt = std::numeric_limits<int>::max();

template<class Store>
bool ReadFlag(BlockReader& reader, Store store)
{
    bool on;
    if (!reader.ReadBool(on)) {
        return false;
    }
    store(on);
    return true;
}

bool ReadFloatv(BlockReader& reader, EngineVector<float>& values, std::size_t count)
{
    for (; count > 0; --count) {
        float value;
        if (!reader.ReadFloat(value)) {
            return false;
        }
        values.push_back(value);
    }
    return true;
}

/// The parameters of one effect while its block is being read.
class EffectRecord
{
public:
    explicit EffectRecord(const SndFXDefault& defaults)
    {
        std::memcpy(bytes, defaults.record, defaults.size);
    }

    bool Read(BlockReader& reader, const EffectField& field, const DefinitionReport& report)
    {
        std::int32_t whole = 0;
        float number = 0.0F;
        if (field.isInt ? !reader.ReadInt(whole) : !reader.ReadFloat(number)) {
            return false;
        }
        if (field.isInt) {
            std::memcpy(bytes + field.offset, &whole, sizeof whole);
        }
        else {
            std::memcpy(bytes + field.offset, &number, sizeof number);
        }
        const double value = field.isInt ? whole : number;
        report.CheckRange(field.keyword, reader, value, field.minimum, field.maximum);
        return true;
    }

    const void* GetBytes() const { return bytes; }

private:
    static constexpr std::size_t largest = sizeof(FXEnvReverb);
    unsigned char bytes[largest];
};

} // namespace

DefinitionListener* SoundDefResource::listener = nullptr;

/// The state of reading a definition's own block.
struct SoundDefResource::Reading
{
    const SoundDefResource& sound;
    BlockReader& reader;
    const PString& keyword; ///< The one being read.
    int line = 0; ///< Its line.
    const DefinitionReport& report;
    bool hasFile = false;

    bool ReadFloat(float& value, double minimum, double maximum)
    {
        if (!reader.ReadFloat(value)) {
            return false;
        }
        report.CheckRange(keyword, reader, value, minimum, maximum);
        return true;
    }

    bool ReadSampleFrame(int& value)
    {
        if (!reader.ReadInt(value)) {
            return false;
        }
        report.CheckRange(keyword, reader, value, 0, maxInt);
        return true;
    }
};

/// A keyword with a value. `read` reads the value; if it returns false, reading ends.
struct SoundDefResource::Setting
{
    const PString& keyword;
    bool (*read)(Reading& reading);
};

SoundDefResource::SoundDefResource(const PString& newName, const ResourceDatabase* database)
    : SoundResource(newName, database)
{
}

SoundDefResource::~SoundDefResource() = default;

DefinitionListener* SoundDefResource::SetListener(DefinitionListener* newListener)
{
    return std::exchange(listener, newListener);
}

Result SoundDefResource::Load(const ResourceDatabase*, char*) const
{
    return Result(OtherEntry);
}

Result SoundDefResource::LoadTxt(const ResourceDatabase*, char* path) const
{
    fxList.Clear();
    FreePolyline();
    const DefinitionMessages messages(listener, GetOwnerName(), path);
    DefinitionReport report(listener);
    File file;
    const Result opened = file.Open(GetOwnerName(), path, File::modeRead);
    if (!opened.IsOk()) {
        // An empty file cannot be opened, but is handled like any other file without a definition.
        if (opened.GetCode() == File::Empty) {
            Init();
            report.OnFault(DefinitionFault::NoDefinition);
        }
        else {
            Report(MessageLevel::Error, "definition '", path, "' of owner '", GetOwnerName(), "' ",
                File::DescribeCode(opened.GetCode()));
        }
        return Result(LoadFailed);
    }
    BlockReader reader;
    if (report.IsWanted()) {
        reader.SetListener(&report);
    }
    reader.Init(file);
    Init();
    const bool isRead = ReadDataTxt(&reader);
    // Anything after the definition is ignored, but its author may want to know.
    PString ignored;
    while (report.IsWanted() && reader.Next(ignored)) {
    }
    file.Close();
    return Result(isRead ? Loaded : LoadFailed);
}

bool SoundDefResource::ReadDataTxt(BlockReader* reader) const
{
    const DefinitionReport report(listener);
    PString keyword;
    while (reader->Next(keyword) && keyword != Keys::soundDefinition) {
    }
    BlockReader* block = keyword == Keys::soundDefinition ? reader->Begin() : nullptr;
    if (!block) {
        report.OnFault(DefinitionFault::NoDefinition);
        return false;
    }
    Reading reading{*this, *block, keyword, 0, report};
    bool goesOn = true;
    while (goesOn && block->Next(keyword)) {
        reading.line = block->GetLine();
        report.OnKeyword(PString(), keyword, reading.line);
        goesOn = ReadKeyword(reading);
        PreferEffects(reading);
    }
    reader->End();
    if (!reading.hasFile) {
        report.OnFault(DefinitionFault::NoFile);
    }
    return reading.hasFile;
}

bool SoundDefResource::ReadKeyword(Reading& reading) const
{
    if (const Setting* setting = FindSetting(reading.keyword)) {
        return setting->read(reading);
    }
    if (reading.keyword == Keys::polyline) {
        return ReadPolyline(&reading.reader);
    }
    if (const EffectKeywords* effect = FindEffectKeywords(reading.keyword)) {
        return ReadFXParam(&reading.reader, effect->effect);
    }
    bool isRead = true;
    VariationReader(variation, limits, reading.report).Read(reading.keyword, reading.reader, isRead);
    return isRead;
}

const SoundDefResource::Setting* SoundDefResource::FindSetting(const PString& keyword)
{
    using R = Reading&;
    static constexpr Setting settings[] = {
        {Keys::file, [](R r) { return r.hasFile = r.reader.ReadString(r.sound.fileName); }},
        {Keys::looping, [](R r) { return ReadFlag(r.reader, [&r](bool on) { r.sound.looping = on; }); }},
        {Keys::loopStart, [](R r) { return r.ReadSampleFrame(r.sound.loopStart); }},
        {Keys::loopEnd, [](R r) { return r.ReadSampleFrame(r.sound.loopEnd); }},
        {Keys::gain, [](R r) { return r.ReadFloat(r.sound.gain, 0, 1); }},
        {Keys::lowPass, [](R r) { return r.ReadFloat(r.sound.lowPass, 0, 1); }},
        {Keys::delay, [](R r) { return r.sound.ReadDelay(r.reader); }},
        {Keys::minDistance, [](R r) { return r.ReadFloat(r.sound.minDistance, 0, maxFloat); }},
        {Keys::maxDistance, [](R r) { return r.ReadFloat(r.sound.maxDistance, 0, maxFloat); }},
        {Keys::cutout, [](R r) { return ReadFlag(r.reader, [&r](bool on) { r.sound.cutout = on; }); }},
        {Keys::innerConeAngle, [](R r) { return r.ReadFloat(r.sound.innerConeAngle, 0, 360); }},
        {Keys::outerConeAngle, [](R r) { return r.ReadFloat(r.sound.outerConeAngle, 0, 360); }},
        {Keys::coneGain, [](R r) { return r.ReadFloat(r.sound.coneGain, 0, 1); }},
        {Keys::doppler, [](R r) { return r.ReadFloat(r.sound.doppler, 0, maxDopplerFactor); }},
        {Keys::position, [](R r) { return r.sound.ReadPosition(r.reader); }},
        {Keys::set_frquency,
            [](R r) { return ReadFlag(r.reader, [&r](bool on) { r.sound.chgFrequency = on; }); }},
        {Keys::frequency, [](R r) { return r.sound.ReadFrequency(r.reader); }},
        {Keys::disable_mic_fx,
            [](R r) { return ReadFlag(r.reader, [&r](bool on) { r.sound.disableMicFX = on; }); }},
    };
    for (const Setting& setting : settings) {
        if (setting.keyword == keyword) {
            return &setting;
        }
    }
    return nullptr;
}

// A sound with effects cannot change its rate, whatever the order of the keywords.
void SoundDefResource::PreferEffects(const Reading& reading) const
{
    if (fxList.GetNumEffects() == 0 || !(chgFrequency || variation.VariesFrequency())) {
        return;
    }
    reading.report.OnFault(DefinitionFault::RateDropped, reading.keyword, reading.line);
    if (chgFrequency) {
        frequency = 0;
    }
    chgFrequency = false;
    variation.minFrequencyFactor = 1.0F;
    variation.maxFrequencyFactor = 1.0F;
}

bool SoundDefResource::ReadFrequency(BlockReader& reader) const
{
    frequency = 0;
    int hz;
    if (!reader.ReadInt(hz)) {
        return false;
    }
    constexpr int minimum = minRateHz;
    constexpr int maximum = maxRateHz;
    if (hz >= minimum && hz <= maximum) {
        frequency = hz;
        chgFrequency = true;
    }
    // 0 selects the rate of the file, which is the default.
    if (hz != 0) {
        DefinitionReport(listener).CheckRange(Keys::frequency, reader, hz, minimum, maximum);
    }
    return true;
}

bool SoundDefResource::ReadDelay(BlockReader& reader) const
{
    if (!reader.ReadInt(delay)) {
        return false;
    }
    if (delay >= 0) {
        return true;
    }
    DefinitionReport(listener).CheckRange(Keys::delay, reader, delay, 0, maxInt, DefinitionFault::Refused);
    delay = 0;
    return false;
}

bool SoundDefResource::ReadPosition(BlockReader& reader) const
{
    float values[coordinatesPerPoint] = {position.x, position.y, position.z};
    const int taken = reader.ReadFloatv(values, coordinatesPerPoint);
    position = {values[0], values[1], values[2]};
    return taken == coordinatesPerPoint;
}

bool SoundDefResource::ReadPolyline(BlockReader* reader) const
{
    FreePolyline();
    const DefinitionReport report(listener);
    BlockReader* block = reader->Begin();
    if (!block) {
        report.OnFault(DefinitionFault::NoBlock, Keys::polyline, reader->GetLine());
        return false;
    }
    const int line = reader->GetLine();
    EngineVector<float> coordinates;
    const bool isRead = ReadLine(*block, coordinates);
    reader->End();
    if (!isRead) {
        return false;
    }
    if (coordinates.size() / coordinatesPerPoint < minPoints) {
        report.OnFault(DefinitionFault::TooFewPoints, Keys::polyline, line);
        return false;
    }
    StorePoints(coordinates);
    return true;
}

bool SoundDefResource::ReadLine(BlockReader& block, EngineVector<float>& coordinates) const
{
    const DefinitionReport report(listener);
    PString keyword;
    bool goesOn = true;
    while (goesOn && block.Next(keyword)) {
        report.OnKeyword(Keys::polyline, keyword, block.GetLine());
        if (keyword == Keys::num_add_sounds) {
            goesOn = ReadNumAddSounds(block);
        }
        else if (keyword == Keys::angle) {
            goesOn = block.ReadFloat(minAngle);
        }
        else if (keyword == Keys::point) {
            goesOn = ReadFloatv(block, coordinates, coordinatesPerPoint);
        }
    }
    return goesOn;
}

bool SoundDefResource::ReadNumAddSounds(BlockReader& reader) const
{
    if (!reader.ReadInt(numAddSounds)) {
        return false;
    }
    if (numAddSounds >= 0) {
        return true;
    }
    DefinitionReport(listener).CheckRange(
        Keys::num_add_sounds, reader, numAddSounds, 0, maxInt, DefinitionFault::Refused);
    numAddSounds = 0;
    return false;
}

void SoundDefResource::StorePoints(const EngineVector<float>& coordinates) const
{
    const std::size_t count = coordinates.size() / coordinatesPerPoint;
    polyline = static_cast<Vector3*>(Alloc::New(static_cast<unsigned int>(count * sizeof(Vector3))));
    for (std::size_t i = 0; i < count; ++i) {
        const float* point = &coordinates[i * coordinatesPerPoint];
        new (&polyline[i]) Vector3{point[0], point[1], point[2]};
    }
    numPoints = static_cast<int>(count);
}

bool SoundDefResource::ReadFXParam(BlockReader* reader, SndFX effect) const
{
    const DefinitionReport report(listener);
    const EffectKeywords& keywords = GetEffectKeywords(effect);
    const SndFXDefault& defaults = GetFXDefault(effect);
    EffectRecord record(defaults);
    // Without a block the effect has its defaults.
    if (BlockReader* block = reader->Begin()) {
        PString keyword;
        bool goesOn = true;
        while (goesOn && block->Next(keyword)) {
            report.OnKeyword(keywords.keyword, keyword, block->GetLine());
            if (const EffectField* field = keywords.FindField(keyword)) {
                goesOn = record.Read(*block, *field, report);
            }
        }
        reader->End();
        if (!goesOn) {
            return false;
        }
    }
    const unsigned long size = defaults.size + (effect == SndFXEnvReverb ? sizeof(std::int32_t) : 0);
    fxList.AddFX(effect, record.GetBytes(), size, defaultEnvReverbQuality);
    return true;
}

} // namespace Quon
