#include "drivers/openal/effects/FeedbackNetwork.h"

#include "drivers/openal/effects/Biquad.h"
#include "drivers/openal/effects/Units.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

namespace Quon
{

namespace
{

using Four = FeedbackNetwork::Four;
constexpr std::size_t lineCount = FeedbackNetwork::lineCount;
using Lengths = std::array<std::size_t, lineCount>;

/// In a geometric series, so that no two lines are close to a simple ratio.
constexpr std::array<double, lineCount> lengthsMs = {26.1, 28.5, 31.1, 33.9, 37.0, 40.3, 44.0, 48.0};

constexpr double decayDecibels = 60.0;
constexpr double shelfHz = 4000.0;
/// Per pass of a line. A larger value would affect too low frequencies.
constexpr double maxShelfDecibels = 24.0;

/// Integer lengths without a common factor, so that the echoes of the lines coincide as late as possible.
Lengths MakeLengths(double size, int rateHz)
{
    Lengths lengths{};
    for (std::size_t i = 0; i < lineCount; ++i) {
        const auto isAlien = [&](std::size_t other) { return std::gcd(lengths[i], other) == 1; };
        lengths[i] = static_cast<std::size_t>(std::max(ToSampleFrames(lengthsMs[i] * size, rateHz), 1.0));
        while (!std::all_of(lengths.begin(), lengths.begin() + static_cast<std::ptrdiff_t>(i), isAlien)) {
            ++lengths[i];
        }
    }
    return lengths;
}

void SetLane(std::array<Four, 2>& lanes, std::size_t lane, double value)
{
    lanes[lane / 4][lane % 4] = static_cast<float>(value);
}

float Sum(Four values)
{
    return (values[0] + values[2]) + (values[1] + values[3]);
}

// Each side of the room is a sum of all lines, half of them negated: as many of the even ones, which receive
// the left side, as of the odd ones, and different ones for each side.
float GetLeft(const std::array<Four, 2>& heard)
{
    constexpr Four signs = {1, 1, -1, -1};
    return Sum(signs * (heard[0] + heard[1]));
}

float GetRight(const std::array<Four, 2>& heard)
{
    constexpr Four signs = {1, 1, 1, -1};
    return Sum(signs * (heard[0] - heard[1]));
}

} // namespace

FeedbackNetwork::FeedbackNetwork(const Room& room, int rateHz)
    : delays(MakeLengths(room.size, rateHz))
{
    const std::size_t longest = *std::max_element(delays.begin(), delays.end());
    rows.resize(std::bit_ceil(longest + 1));
    mask = rows.size() - 1;

    const double cornerHz = std::min<double>(shelfHz, GetHighestFilterHz(rateHz));
    double power = 0.0;
    for (std::size_t i = 0; i < lineCount; ++i) {
        const double lost =
            decayDecibels * static_cast<double>(delays[i]) / ToSampleFrames(room.decayMs, rateHz);
        const double lostHigh = std::min(lost * (1.0 / room.highRatio - 1.0), maxShelfDecibels);
        const double kept = std::pow(10.0, -lost / 10);
        // A sound leaves the line repeatedly, attenuated by this factor each time: the sum of a geometric
        // series.
        power += 1.0 / (1.0 - kept);
        const BiquadFactors shelf = BiquadFactors::MakeHighShelf(cornerHz, -lostHigh, rateHz);
        SetLane(decay, i, std::sqrt(kept));
        SetLane(b0, i, shelf.b0);
        SetLane(b1, i, shelf.b1);
        SetLane(b2, i, shelf.b2);
        SetLane(a1, i, shelf.a1);
        SetLane(a2, i, shelf.a2);
    }
    level = static_cast<float>(1.0 / std::sqrt(power));
}

void FeedbackNetwork::ProcessMono(std::span<float> pcm)
{
    for (float& sample : pcm) {
        sample = GetLeft(Step(sample, sample));
    }
}

void FeedbackNetwork::ProcessStereo(std::span<float> pcm)
{
    for (std::size_t i = 0; i < pcm.size(); i += 2) {
        const Lanes heard = Step(pcm[i], pcm[i + 1]);
        pcm[i] = GetLeft(heard);
        pcm[i + 1] = GetRight(heard);
    }
}

// Feeds a sample frame and returns the output of the lines.
inline FeedbackNetwork::Lanes FeedbackNetwork::Step(float left, float right)
{
    Lanes heard;
    Lanes fed;
    for (std::size_t half = 0; half < 2; ++half) {
        const Four late = ReadHalf(half);
        heard[half] = b0[half] * late + near[half];
        near[half] = (b1[half] * late + far[half]) - a1[half] * heard[half];
        far[half] = b2[half] * late - a2[half] * heard[half];
        fed[half] = decay[half] * heard[half];
    }
    // A Householder reflection of the eight lines, which preserves their power.
    const float mirrored = Sum(fed[0] + fed[1]) * (2.0F / lineCount);
    const float evens = level * left - mirrored;
    const float odds = level * right - mirrored;
    const Four in = {evens, odds, evens, odds};
    rows[row] = {fed[0] + in, fed[1] + in};
    row = (row + 1) & mask;
    return heard;
}

inline FeedbackNetwork::Four FeedbackNetwork::ReadHalf(std::size_t half) const
{
    const auto read = [&](std::size_t lane) {
        return rows[(row - delays[4 * half + lane]) & mask][half][lane];
    };
    return Four{read(0), read(1), read(2), read(3)};
}

void FeedbackNetwork::Clear()
{
    std::fill(rows.begin(), rows.end(), Lanes{});
    near = {};
    far = {};
}

int FeedbackNetwork::GetLongest() const
{
    return static_cast<int>(*std::max_element(delays.begin(), delays.end()));
}

} // namespace Quon
