#include "harmonet/definitions/DefinitionState.h"

#include "harmonet/definitions/SoundResource.h"
#include "harmonet/output/SndChannel.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

constexpr double decibelsPerDecade = 20.0;

double Between(double minimum, double maximum, double part)
{
    return minimum + (maximum - minimum) * part;
}

} // namespace

unsigned long ScaleFrequency(int hz, float factor)
{
    const double scaled = std::round(static_cast<double>(hz) * static_cast<double>(factor));
    return hz > 0 ? static_cast<unsigned long>(std::clamp<double>(scaled, minRateHz, maxRateHz)) : 0;
}

DefinitionState::DefinitionState(std::uint64_t seed, const PString& newName, const PString& owner)
    : name(newName)
    , random(seed, owner.GetView(), newName.GetView())
{
}

SoundChoice DefinitionState::Choose(const SoundResource& resource)
{
    SoundChoice choice = {ChooseFile(resource), ChooseGain(resource), 1.0F};
    const SoundVariation& variation = resource.GetVariation();
    if (variation.VariesFrequency()) {
        choice.frequencyFactor = static_cast<float>(
            Between(variation.minFrequencyFactor, variation.maxFrequencyFactor, random.NextUnit()));
    }
    return choice;
}

void DefinitionState::NoteStart(int soundID, std::int64_t now)
{
    running.push_back(soundID);
    startBefore = lastStart;
    lastStart = now;
    lastStarted = soundID;
}

void DefinitionState::CancelStart(int soundID)
{
    Leave(soundID);
    if (lastStarted == soundID) {
        lastStart = startBefore;
    }
}

PString DefinitionState::ChooseFile(const SoundResource& resource)
{
    const EngineVector<PString>& variants = resource.GetVariation().variants;
    const std::size_t count = variants.size() + 1;
    if (count == 1) {
        return resource.GetFileName();
    }
    // The definition may have been reloaded with fewer files.
    if (lastFile && *lastFile >= count) {
        lastFile.reset();
    }
    std::size_t file = 0;
    if (resource.GetVariation().order == VariantOrder::Sequence) {
        file = lastFile ? (*lastFile + 1) % count : 0;
    }
    else if (lastFile) {
        // One of the others.
        file = random.NextBelow(static_cast<std::uint32_t>(count - 1));
        file += file >= *lastFile ? 1 : 0;
    }
    else {
        file = random.NextBelow(static_cast<std::uint32_t>(count));
    }
    lastFile = file;
    return file == 0 ? resource.GetFileName() : variants[file - 1];
}

float DefinitionState::ChooseGain(const SoundResource& resource)
{
    const float gain = resource.GetGain();
    const SoundVariation& variation = resource.GetVariation();
    if (!variation.VariesGain()) {
        return gain;
    }
    const double decibels = Between(variation.minGainDb, variation.maxGainDb, random.NextUnit());
    // As everywhere, a gain out of range counts as 1.
    const double base = gain >= 0.0F && gain <= 1.0F ? static_cast<double>(gain) : 1.0;
    // Rounded to a grid, since the last digit of a power differs between platforms.
    constexpr double grid = 65536.0;
    const double varied = base * std::pow(10.0, decibels / decibelsPerDecade);
    return static_cast<float>(std::min(std::round(varied * grid) / grid, 1.0));
}

DefinitionState& DefinitionStates::Get(const SoundResource& resource)
{
    const PString& name = resource.GetName();
    const PString& owner = resource.GetOwnerName();
    return states.try_emplace(Key{name, owner}, seed, name, owner).first->second;
}

SoundChoice DefinitionStates::Choose(const SoundResource& resource)
{
    if (!resource.GetVariation().VariesAnything()) {
        return {resource.GetFileName(), resource.GetGain(), 1.0F};
    }
    return Get(resource).Choose(resource);
}

} // namespace Quon
