#include "drivers/openal/RateConverter.h"

#include "drivers/common/DriverChannel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace Quon
{

namespace
{

/// The reciprocal of the duration of a cross-fade between engines, per second.
constexpr int changesPerSecond = 100;
constexpr int msPerSecond = 1000;
/// Sample frames that a new engine reads before its output is used, at a ratio of 1.
constexpr double memoryFrames = 512.0;
/// Past sample frames kept for that; at the highest rates the history is shorter.
constexpr std::int64_t heldFrames = 1024;

} // namespace

void RateConverter::Start(int newWidth, int newOutputHz, RateGrade newGrade)
{
    width = newWidth;
    outputHz = newOutputHz;
    grade = RateEngine::IsAvailable() ? newGrade : RateGrade::Fast;
    wantedHz = currentHz = 0.0;
    first = 0;
    Finish();
}

void RateConverter::Finish()
{
    engine = RateEngine();
    changesAt.reset();
    fading.clear();
    faded = 0;
    discarded = 0;
}

int RateConverter::Convert(const PcmFifo& input, bool isWhole, std::span<float> out)
{
    if (currentHz == 0.0 && input.GetEnd() < first) {
        if (isWhole) {
            first = input.GetEnd();
        }
        return 0;
    }
    if (currentHz == 0.0 || (engine.IsOver() && input.GetEnd() > engine.GetFed())) {
        MakeEngine();
    }
    else if (wantedHz != currentHz && grade != RateGrade::Fast && !engine.IsVariable() &&
        !GoVariable(input, isWhole)) {
        return 0;
    }
    DiscardOutput(input, isWhole);
    if (discarded > 0) {
        return 0;
    }
    if (engine.IsVariable() && wantedHz != currentHz) {
        engine.Glide(wantedHz / outputHz, outputHz * glideMs / msPerSecond);
        currentHz = wantedHz;
    }
    const int given = engine.Convert(input, isWhole, out);
    ApplyFade(out.first(static_cast<std::size_t>(given) * width));
    return given;
}

// The grade "fast" is left to the mixer.
void RateConverter::MakeEngine()
{
    const double inputHz = grade == RateGrade::Fast ? outputHz : wantedHz;
    const std::int64_t begin = currentHz == 0.0 ? first : engine.GetFed();
    engine.StartFixed(begin, width, inputHz, outputHz, grade);
    currentHz = wantedHz;
}

// Returns false while data for the whole cross-fade are missing.
bool RateConverter::GoVariable(const PcmFifo& input, bool isWhole)
{
    const double ratio = currentHz / outputHz;
    if (!changesAt) {
        changesAt = engine.GetPosition();
        fading.clear();
        faded = 0;
    }
    const std::size_t held = fading.size();
    fading.resize(static_cast<std::size_t>(outputHz / changesPerSecond) * width);
    const int given = engine.Convert(input, isWhole, std::span(fading).subspan(held));
    const std::size_t filled = held + static_cast<std::size_t>(given) * width;
    if (filled < fading.size() && !isWhole) {
        fading.resize(filled);
        return false;
    }
    fading.resize(filled);

    const double position = *std::exchange(changesAt, std::nullopt);
    const auto wanted = static_cast<std::int64_t>(position - memoryFrames * std::max(ratio, 1.0));
    const std::int64_t begin = std::max(wanted, input.GetBegin());
    engine.StartVariable(begin, width, ratio, std::max<double>(maxRateHz, wantedHz) / outputHz);
    discarded = static_cast<int>(std::lround((position - static_cast<double>(begin)) / ratio));
    return true;
}

void RateConverter::DiscardOutput(const PcmFifo& input, bool isWhole)
{
    std::array<float, 512> scratch;
    while (discarded > 0) {
        const std::size_t sampleFrames = std::min<std::size_t>(
            scratch.size() / static_cast<std::size_t>(width), static_cast<std::size_t>(discarded));
        const int given = engine.Convert(
            input, isWhole, std::span(scratch).first(sampleFrames * static_cast<std::size_t>(width)));
        if (given == 0) {
            return;
        }
        discarded -= given;
    }
}

void RateConverter::ApplyFade(std::span<float> out)
{
    const std::size_t count = std::min(out.size(), fading.size() - faded);
    const auto length = static_cast<float>(fading.size());
    for (std::size_t i = 0; i < count; ++i) {
        const float level = static_cast<float>(faded) / length;
        out[i] = out[i] * level + fading[faded] * (1.0F - level);
        ++faded;
    }
    if (faded == fading.size()) {
        fading.clear();
        faded = 0;
    }
}

std::int64_t RateConverter::GetOldestNeeded() const
{
    if (grade == RateGrade::Fast || engine.IsVariable()) {
        return engine.GetFed();
    }
    return std::min(engine.GetFed(), static_cast<std::int64_t>(GetPosition()) - heldFrames);
}

} // namespace Quon
