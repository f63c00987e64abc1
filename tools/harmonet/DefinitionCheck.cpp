#include "tools/harmonet/DefinitionCheck.h"

#include "harmonet/engine/File.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/instances/SndPolyline.h"
#include "harmonet/kernel/HarmonetStrings.h"
#include "tools/harmonet/Format.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace Tool
{

namespace
{

using Quon::DefinitionFault;
using Keys = Quon::HarmonetStrings;

std::string ToString(const Quon::PString& text)
{
    return std::string(text.GetView());
}

/// Returns what a sound does when the value of the keyword is out of range and ignored; null if the value is
/// used.
const char* ExplainIgnored(const Quon::PString& keyword)
{
    if (keyword == Keys::frequency) {
        return "the sound plays at its own rate";
    }
    if (keyword == Keys::gain) {
        return "the sound plays at gain 1";
    }
    if (keyword == Keys::lowPass) {
        return "the sound is not filtered";
    }
    if (keyword == Keys::gainRange || keyword == Keys::frequencyRange) {
        return "there is no variation";
    }
    return keyword == Keys::maxInstances || keyword == Keys::minInterval ? "there is no limit" : nullptr;
}

int TryToOpen(const Quon::PString& owner, const Quon::PString& name)
{
    Quon::File opened;
    return opened.Open(owner, name.GetText(), Quon::File::modeRead).GetCode();
}

std::string ExplainFailure(const DefinitionFile& file)
{
    const Quon::SoundDefResource& definition = file.GetSettings();
    const int code = TryToOpen(definition.GetOwnerName(), definition.GetName());
    return code == Quon::File::Opened ? "does not load" : FormatOpenCode(code);
}

} // namespace

std::vector<Finding> DefinitionCheck::Run(DefinitionFile& file)
{
    Quon::DefinitionListener* const before = Quon::SoundDefResource::SetListener(this);
    const bool isLoaded = file.Load();
    Quon::SoundDefResource::SetListener(before);
    if (isLoaded) {
        const Quon::SoundDefResource& sound = file.GetSettings();
        CheckSoundFile(sound, sound.GetFileName(), FindLine(Keys::file));
        CheckLoop(sound);
        CheckVariation(sound);
        CheckDistances(sound);
        CheckCone(sound);
        if (sound.GetPolyline()) {
            CheckLine(sound);
        }
    }
    else {
        AddError(0, "the definition " + ExplainFailure(file));
    }
    std::stable_sort(
        findings.begin(), findings.end(), [](const Finding& a, const Finding& b) { return a.line < b.line; });
    return findings;
}

void DefinitionCheck::OnKeyword(const Quon::PString& block, const Quon::PString& keyword, int line)
{
    lastBlock = block;
    auto& known = block.IsEmpty() || block == Keys::polyline ? lines : blockLines;
    if (block.IsEmpty()) {
        blockLines.clear();
        if (keyword.GetView().starts_with("*FX_")) {
            effects.emplace_back(keyword, line);
        }
        if (keyword == Keys::variant) {
            variantLines.push_back(line);
        }
    }
    const auto [place, isFirst] = known.emplace(keyword, line);
    if (!isFirst && keyword != Keys::point && keyword != Keys::variant) {
        AddWarning(line,
            ToString(keyword) + " is repeated; the one in line " + std::to_string(place->second) +
                " has no effect");
    }
    place->second = line;
}

void DefinitionCheck::OnRemark(const Quon::DefinitionRemark& remark)
{
    findings.push_back({remark.line, IsError(remark), Explain(remark)});
    // A setting that was not read needs no further checks.
    if (remark.fault == DefinitionFault::Unreadable || remark.fault == DefinitionFault::Refused) {
        lines.erase(remark.keyword);
    }
}

bool DefinitionCheck::IsError(const Quon::DefinitionRemark& remark) const
{
    // Out-of-range values are kept, except for these, which are ignored.
    return remark.fault != DefinitionFault::OutOfRange ||
        (lastBlock.IsEmpty() && ExplainIgnored(remark.keyword));
}

std::string DefinitionCheck::Explain(const Quon::DefinitionRemark& remark) const
{
    std::string text(Quon::DescribeRemark(remark));
    const char* const instead = ExplainIgnored(remark.keyword);
    if (remark.fault == DefinitionFault::OutOfRange && lastBlock.IsEmpty() && instead) {
        text += std::string(" and is ignored: ") + instead;
    }
    return text;
}

int DefinitionCheck::FindLine(const Quon::PString& keyword) const
{
    const auto found = lines.find(keyword);
    return found != lines.end() ? found->second : 0;
}

void DefinitionCheck::CheckSoundFile(const Quon::SoundDefResource& sound, const Quon::PString& name, int line)
{
    const std::string shown = "the sound file '" + ToString(name) + "' ";
    const int code = TryToOpen(sound.GetOwnerName(), name);
    if (code != Quon::File::Opened) {
        return AddError(line, shown + FormatOpenCode(code));
    }
    const std::unique_ptr<Quon::SndFile> data(Quon::SndFile::OpenFile(sound.GetOwnerName(), name));
    if (!data) {
        AddError(line, shown + "is neither a PCM or Microsoft ADPCM wave nor MPEG Layer III");
    }
    else if (!data->SetLoopRegion(sound.GetLoopStart(), sound.GetLoopEnd())) {
        AddWarning(std::max(FindLine(Keys::loopStart), FindLine(Keys::loopEnd)),
            shown + "loops as a whole: none of its " + std::to_string(data->GetSoundSamples()) +
                " sample frames are in the loop region");
    }
}

void DefinitionCheck::CheckLoop(const Quon::SoundDefResource& sound)
{
    const int line = std::max(FindLine(Keys::loopStart), FindLine(Keys::loopEnd));
    if (line != 0 && !sound.GetLooping() && !sound.GetPolyline()) {
        AddWarning(line, "the loop region has no effect unless the game starts the sound as a loop");
    }
}

void DefinitionCheck::CheckVariation(const Quon::SoundDefResource& sound)
{
    const Quon::SoundVariation& variation = sound.GetVariation();
    for (std::size_t i = 0; i < variation.variants.size() && i < variantLines.size(); ++i) {
        CheckSoundFile(sound, variation.variants[i], variantLines[i]);
    }
    if (const int line = FindLine(Keys::variantOrder); line && variation.variants.empty()) {
        AddWarning(line, ToString(Keys::variantOrder) + " has no effect without " + ToString(Keys::variant));
    }
    if (const int line = FindLine(Keys::stealing); line && sound.GetLimits().maxInstances == 0) {
        AddWarning(line, ToString(Keys::stealing) + " has no effect without " + ToString(Keys::maxInstances));
    }
    const double loudest = std::pow(10.0, static_cast<double>(variation.maxGainDb) / 20.0);
    if (variation.VariesGain() && static_cast<double>(sound.GetGain()) * loudest > 1.0) {
        AddWarning(FindLine(Keys::gainRange), "the range exceeds gain 1, to which it is clamped");
    }
}

void DefinitionCheck::CheckDistances(const Quon::SoundDefResource& sound)
{
    const int line = std::max(FindLine(Keys::minDistance), FindLine(Keys::maxDistance));
    if (sound.GetMaxDistance() < sound.GetMinDistance()) {
        AddWarning(
            line, "the maximum distance is below the minimum: the sound does not fall off with distance");
    }
    if (sound.GetCutout() && sound.GetMaxDistance() == 0.0F) {
        AddWarning(line, "with a cutout at distance 0, a positional sound is never heard");
    }
}

void DefinitionCheck::CheckCone(const Quon::SoundDefResource& sound)
{
    constexpr float halfTurn = 180.0F;
    const int line =
        std::max({FindLine(Keys::innerConeAngle), FindLine(Keys::outerConeAngle), FindLine(Keys::coneGain)});
    const bool isInUse = sound.GetInnerConeAngle() < halfTurn && sound.GetConeGain() < 1.0F;
    const bool isAskedFor = sound.GetInnerConeAngle() != halfTurn || sound.GetOuterConeAngle() != halfTurn ||
        sound.GetConeGain() != 1.0F;
    if (isAskedFor && !isInUse) {
        AddWarning(line, "no cone is in use: a cone needs an inner angle below 180 and a cone gain below 1");
    }
    if (isInUse && sound.GetOuterConeAngle() < sound.GetInnerConeAngle()) {
        AddWarning(line, "the outer cone angle is below the inner one");
    }
}

void DefinitionCheck::CheckLine(const Quon::SoundDefResource& sound)
{
    for (const auto& [keyword, line] : effects) {
        AddWarning(line, ToString(keyword) + " is not heard: a sound along a line starts without effects");
    }
    if (const int line = FindLine(Keys::position)) {
        AddWarning(line, ToString(Keys::position) + " is ignored: the line has its own positions");
    }
    if (const int line = FindLine(Keys::looping); line && !sound.GetLooping()) {
        AddWarning(line, "a sound along a line always loops");
    }
    if (sound.GetMinDistance() <= 0.0F && sound.GetMaxDistance() <= 0.0F) {
        AddWarning(FindLine(Keys::polyline),
            "without a distance above 0, the sound is heard only on the line itself");
    }
    const auto asked = static_cast<unsigned int>(sound.GetNumAddSounds());
    const unsigned int possible = Quon::LimitSources(asked, sound.GetMinAngle()).numAddSounds;
    if (possible < asked) {
        AddWarning(FindLine(Keys::num_add_sounds),
            "with an angle of " + FormatNumber(sound.GetMinAngle()) + " there is room for " +
                std::to_string(possible) + " additional sounds, not " + std::to_string(asked));
    }
}

} // namespace Tool
