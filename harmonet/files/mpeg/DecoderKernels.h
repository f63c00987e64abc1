#pragma once

#include "harmonet/Export.h"
#include "harmonet/files/mpeg/DecoderTables.h"
#include "harmonet/files/mpeg/SideInfo.h"

namespace Quon
{

/// The decoder's arithmetic in the form that the processor at hand runs fastest. The same source is compiled
/// on the compiler's vectors of four for the least processor of the build (SSE2, 64-bit ARM), in plain loops,
/// and on x86-64 once more for AVX2 with fused multiplication. Their PCM differs by rounding alone: at
/// most by one step of 16 bits as long as the decoded values stay within about full scale, by more beyond it.
/// All functions work on plain arrays, allocate nothing, and may run on several threads at once.
///
/// "Padded" arrays have room for `linePadding` more floats behind their content, which may be overwritten.

inline constexpr int linePadding = 16;
/// From one channel's spectrum to the next.
inline constexpr int spectrumStride = linesPerGranule + linePadding;
/// Time slots of a granule: passes of the polyphase stage, each of which makes 32 sample frames.
inline constexpr int slotsPerGranule = 18;
/// What the polyphase stage keeps of one channel: 15 time slots of 32 cosine sums, and two of these sums once
/// more as rows.
inline constexpr int synthesisHistorySize = 15 * subbandCount + 2 * 15;

struct DecoderKernels
{
    const char* name;

    /// Reads the Huffman data of one granule and channel, which begin `bitPosition` bits behind `bytes` and
    /// may take `budget` bits, and writes the values' powers (sign(v) |v|^(4/3)) to `lines`, all 576 of them,
    /// padded. Returns the line count. The caller goes on behind the budget, wherever the codes ended.
    /// Touches up to 24 bytes behind the last one that the budget allows.
    int (*decodeLines)(const DecoderTables& tables, const GranuleInfo& info, const unsigned char* bytes,
        int bitPosition, int budget, float* lines);

    /// Multiplies each of the first `bandCount` bands, the lines between two entries of `bandStart`, by its
    /// factor. Both arrays are padded.
    void (*scaleBands)(
        const float* lines, const int* bandStart, const float* factors, int bandCount, float* xr);

    /// left, right = left + right, left - right, on at least the first `lineCount` lines.
    void (*midSide)(float* left, float* right, int lineCount);

    /// The butterflies on the first `boundaryCount` of the boundaries between subbands.
    void (*aliasReduction)(const AliasTables& tables, float* xr, int boundaryCount);

    /// The hybrid transform on `subbandGroup` subbands from `subband` on. `xr` is the channel's whole
    /// spectrum, `overlap` and `out` are [18 time slots][32 subbands], with the frequency inversion done.
    void (*longTransform)(
        const HybridTables& tables, int blockType, const float* xr, int subband, float* overlap, float* out);
    void (*shortTransform)(
        const HybridTables& tables, const float* xr, int subband, float* overlap, float* out);
    /// The same where there is no spectrum: hands out the overlap and clears it.
    void (*flushOverlap)(int subband, float* overlap, float* out);
    int subbandGroup;

    /// All 18 passes of the polyphase stage for one channel. `history` holds `synthesisHistorySize` floats;
    /// `samples` takes 576, padded, with full scale at 1.0.
    void (*synthesis)(const SynthesisTables& tables, const float* subbands, float* history, float* samples);

    /// Converts `count` samples, a multiple of 16, to 16-bit PCM. `right` null writes one channel.
    void (*storePcm16)(const float* left, const float* right, int count, unsigned char* pcm);
};

/// For any processor of the build: vectors of four, or plain loops where the compiler has no vector types.
HARMONET_INTERNAL_API const DecoderKernels& BaselineKernels();
/// Plain loops, as for a compiler without vector types. Not selected where there is better.
HARMONET_INTERNAL_API const DecoderKernels& PlainKernels();
/// Null where the compiler or the processor has no AVX2, FMA and BMI2.
HARMONET_INTERNAL_API const DecoderKernels* Avx2Kernels();
/// The fastest of these that this processor runs.
const DecoderKernels& SelectKernels();

} // namespace Quon
