#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/files/mpeg/HuffmanTables.h"
#include "harmonet/files/mpeg/SideInfo.h"

namespace Quon
{

/// The tables shared by all MPEG decoders. SndFileMP3 owns one set, built with its first object and freed
/// with its last; in between any thread may read it. Everything is computed in double precision and stored as
/// 32-bit floats.

/// The largest value of a code with 13 linbits.
inline constexpr int maxSpectralValue = 15 + 8191;

/// Gain table indices. The maximum is that of `global_gain`. The minimum has every reduction at its maximum:
/// subblock gain 7, and an MPEG-2 scale factor of 31 at the coarse scale.
inline constexpr int minGain = -192;
inline constexpr int maxGain = 255;
/// The index at which the factor is 1.
inline constexpr int unityGain = 210;

/// Factors of the left and right channel by intensity position.
struct IntensityTables
{
    float mpeg1Left[16];
    float mpeg1Right[16];
    float mpeg2[2][2][32]; ///< By scale, channel, position.
};

struct AliasTables
{
    float cs[8];
    float ca[8];
};

/// Four copies of a factor, for lanes that each hold a subband. In an odd time slot the odd subbands have the
/// opposite sign: the frequency inversion that the polyphase stage expects is folded in here.
using SubbandFactor = float[4];

/// The windows of the hybrid transform.
struct HybridTables
{
    /// By block type (entry 2 is not used), for each of the 36 outputs: the window value, the sign with which
    /// the 18 cosine sums unfold, and the last scaling of these sums.
    SubbandFactor longWindow[4][36];
    /// The divisors that join the two halves of the 18 cosine sums.
    float joinFactors[9];
    /// The twelve values of the short window.
    float shortWindow[12];
    /// The cosines of the six sums of a short block: row k, column n is cos(pi / 24 (2k + 1)(2n + 1)).
    float shortCosines[6][6];
    /// 1, or the inversion of odd subbands, by the parity of the time slot.
    SubbandFactor inversion[2];
};

/// The coefficients of the polyphase stage.
struct SynthesisTables
{
    /// 1 / (2 cos((2k + 1) pi / 2N)) for N = 32, 16, 8, 4, 2, in this order.
    float cosines[31];
    /// For the 16 past time slots t, the factors of samples j = 0 to 15 and of their mirrors 32 - j. The
    /// signs by which 64 matrixing rows follow from 32 cosine sums are part of them.
    float direct[16][16];
    float mirrored[16][16];
    /// The same for the two samples 0 and 16, which have no mirror.
    float first[16];
    float middle[16];
};

struct HARMONET_INTERNAL_API DecoderTables : Allocated
{
    DecoderTables();

    HuffmanTables huffman;
    /// Sign(i) x |i| to the power of 4/3 for i from 0 up.
    float power[maxSpectralValue + 1];
    /// 2 to the power of (index - 210) / 4, from `minGain` to `maxGain`.
    float gain[maxGain - minGain + 1];
    IntensityTables intensity;
    AliasTables alias;
    HybridTables hybrid;
    SynthesisTables synthesis;

    float Gain(int index) const { return gain[index - minGain]; }
};

} // namespace Quon
