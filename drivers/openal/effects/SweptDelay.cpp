#include "drivers/openal/effects/SweptDelay.h"

#include <cmath>

namespace Quon
{

namespace
{

/// The cubic needs one sample on the near side of the pair that it interpolates.
constexpr float shortestDelay = 2.0F;
/// And one on the far side; the pair itself begins at the integer part of the delay.
constexpr int farSamples = 2;

/// Number of sample frames processed at a time.
constexpr std::size_t pieceSampleFrames = 64;

int CountLongest(const SweptDelay::Settings& settings, int rateHz)
{
    const double maximum = ToSampleFrames(settings.delayMs, rateHz) * (1.0 + settings.depth / 100.0);
    return static_cast<int>(std::max<double>(maximum, shortestDelay)) + farSamples;
}

/// The cubic through four equally spaced samples (Lagrange's form), at `part` of the way from `b` to `c`.
float Interpolate(float a, float b, float c, float d, float part)
{
    const float back = part + 1.0F;
    const float rest = part - 1.0F;
    const float far = part - 2.0F;
    const float outer = part * rest / 6.0F;
    const float inner = back * far / 2.0F;
    return outer * (back * d - far * a) + inner * (rest * b - part * c);
}

} // namespace

SweptDelay::SweptDelay(const Settings& settings, const PcmLayout& layout)
    : channels(layout.channels)
    , isSine(settings.isSine)
    , wetPart(ToPart(settings.wetDryMix))
    , feedback(ToPart(settings.feedback))
    , middle(static_cast<float>(ToSampleFrames(settings.delayMs, layout.rateHz)))
    , swing(middle * ToPart(settings.depth))
    , longest(CountLongest(settings, layout.rateHz))
    , oscillator(settings.frequencyHz, layout.rateHz)
    , rightAhead(static_cast<std::uint32_t>(settings.phase - 2) * Oscillator::quarterTurn)
    , lines{DelayLine(longest), DelayLine(longest)}
{
}

void SweptDelay::Process(std::span<float> pcm)
{
    const auto stride = static_cast<std::size_t>(channels);
    while (!pcm.empty()) {
        const std::size_t sampleFrames = std::min(pcm.size() / stride, pieceSampleFrames);
        for (std::size_t channel = 0; channel < stride; ++channel) {
            ProcessPiece(lines[channel], oscillator.GetPhase() + (channel == 1 ? rightAhead : 0),
                pcm.data() + channel, sampleFrames);
        }
        oscillator.Advance(sampleFrames);
        pcm = pcm.subspan(sampleFrames * stride);
    }
}

void SweptDelay::ProcessPiece(DelayLine& line, std::uint32_t phase, float* pcm, std::size_t sampleFrames)
{
    std::array<float, pieceSampleFrames> delays;
    FillDelays(std::span(delays).first(sampleFrames), phase);
    const auto stride = static_cast<std::size_t>(channels);
    for (std::size_t i = 0; i < sampleFrames; ++i) {
        float& sample = pcm[i * stride];
        sample = ProcessSample(line, delays[i], sample);
    }
}

// A separate loop, so that the compiler can vectorise it.
void SweptDelay::FillDelays(std::span<float> delays, std::uint32_t phase) const
{
    const std::uint32_t step = oscillator.GetStep();
    for (std::size_t i = 0; i < delays.size(); ++i) {
        const float triangle = GetTriangle(phase + static_cast<std::uint32_t>(i) * step);
        const float shape = isSine ? GetSine(triangle) : triangle;
        delays[i] = std::max(middle + swing * shape, shortestDelay);
    }
}

float SweptDelay::ProcessSample(DelayLine& line, float delay, float dry) const
{
    const auto before = static_cast<std::int32_t>(delay);
    const float part = delay - static_cast<float>(before);
    const auto whole = static_cast<std::size_t>(before);
    const float b = line.GetTap(whole);
    const float c = line.GetTap(whole + 1);
    const float wet = Interpolate(line.GetTap(whole - 1), b, c, line.GetTap(whole + farSamples), part);
    line.Push(dry + feedback * (b + part * (c - b)));
    return dry + wetPart * (wet - dry);
}

void SweptDelay::Reset()
{
    oscillator.Reset();
    for (DelayLine& line : lines) {
        line.Clear();
    }
}

} // namespace Quon
