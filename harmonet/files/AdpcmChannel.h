#pragma once

#include <algorithm>
#include <cstdint>

namespace Quon
{

/// The weights, in 256ths, of the last two samples in the prediction of the next one.
struct AdpcmCoefPair
{
    std::int32_t coef1;
    std::int32_t coef2;
};

/// The state of one channel within its block.
struct AdpcmChannelState
{
    std::uint32_t predictor; ///< Index of the channel's coefficient pair.
    std::int32_t delta; ///< The value of one code step.
    std::int32_t sample1; ///< The newest sample.
    std::int32_t sample2; ///< The sample before it.
};

/// The decoder of one channel: state and coefficients together, so that a loop can keep them in registers.
/// Local to the decoding function.
///
/// The delta grows up to threefold with each large code. Codes that no encoder writes could overflow it: it
/// is clamped to `maxDelta`, at which every large code clamps the sample.
class AdpcmChannel
{
public:
    AdpcmChannel(const AdpcmChannelState& state, const AdpcmCoefPair& coefs)
        : coef1(coefs.coef1)
        , coef2(coefs.coef2)
        , delta(state.delta)
        , sample1(state.sample1)
        , sample2(state.sample2)
    {
    }

    /// Decodes the next code, 0 to 15, and returns the sample.
    int Decode(unsigned code)
    {
        const CodeEntry& entry = entries[code];
        // The code's share is added before the shift: it has no bits to lose there, and the sum is available
        // before the last sample is.
        const std::int64_t share = sample2 * coef2 + delta * entry.share;
        const std::int64_t grown = delta * entry.adaptation;
        std::int64_t value = (sample1 * coef1 + share) >> 8;
        delta = grown < minDelta << 8 ? minDelta : grown >> 8;
        if (value != static_cast<std::int16_t>(value)) [[unlikely]] {
            value = std::clamp<std::int64_t>(value, minSample, maxSample);
            // The only place to clamp: a step that takes the delta past its limit, 2^22, changes the sample
            // by more than 2^23, and a prediction from 16-bit coefficients cannot bring that back into range.
            delta = std::min(delta, maxDelta);
        }
        sample2 = sample1;
        sample1 = value;
        return static_cast<int>(value);
    }

    void SaveTo(AdpcmChannelState& state) const
    {
        state.delta = static_cast<std::int32_t>(delta);
        state.sample1 = static_cast<std::int32_t>(sample1);
        state.sample2 = static_cast<std::int32_t>(sample2);
    }

private:
    struct CodeEntry
    {
        std::int32_t share; ///< The code as a signed number, in 256ths.
        std::int32_t
            adaptation; ///< Factors of the delta, in 256ths: below 1 after small steps, above after large.
    };

    static constexpr std::int64_t minDelta = 16;
    static constexpr std::int64_t maxDelta = 1 << 22;
    static constexpr std::int64_t minSample = -32768;
    static constexpr std::int64_t maxSample = 32767;
    static constexpr CodeEntry entries[16] = {{0 * 256, 230}, {1 * 256, 230}, {2 * 256, 230}, {3 * 256, 230},
        {4 * 256, 307}, {5 * 256, 409}, {6 * 256, 512}, {7 * 256, 614}, {-8 * 256, 768}, {-7 * 256, 614},
        {-6 * 256, 512}, {-5 * 256, 409}, {-4 * 256, 307}, {-3 * 256, 230}, {-2 * 256, 230}, {-1 * 256, 230}};

    std::int64_t coef1;
    std::int64_t coef2;
    std::int64_t delta;
    std::int64_t sample1;
    std::int64_t sample2;
};

} // namespace Quon
