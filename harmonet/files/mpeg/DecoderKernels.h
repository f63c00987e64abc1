#pragma once

#include "harmonet/Export.h"
#include "harmonet/files/mpeg/DecoderTables.h"
#include "harmonet/files/mpeg/SideInfo.h"

namespace Quon
{

/// The decoder's arithmetic in the fastest form for the current processor. The same source is compiled with
/// the compiler's vectors of four for the build's baseline processor (SSE2, 64-bit ARM), with plain loops,
/// and on x86-64 also for AVX2 with fused multiplication. The resulting PCM differs by rounding only: by at
/// most one 16-bit step while the decoded values stay within about full scale, by more beyond it. All
/// functions work on plain arrays, do not allocate, and are thread-safe.
///
/// "Padded" arrays have room for `linePadding` more floats after their content, which may be overwritten.

inline constexpr int linePadding = 16;
/// Distance between the spectra of two channels.
inline constexpr int spectrumStride = linesPerGranule + linePadding;
/// Time slots of a granule: passes of the polyphase stage, each of which produces 32 sample frames.
inline constexpr int slotsPerGranule = 18;
/// The polyphase stage's history of one channel: 15 time slots of 32 cosine sums, and two of these sums again
/// as rows.
inline constexpr int synthesisHistorySize = 15 * subbandCount + 2 * 15;

struct DecoderKernels
{
    const char* name;

    /// Reads the Huffman data of one granule and channel, which begin `bitPosition` bits after `bytes` and
    /// may take `budget` bits, and writes the values' powers (sign(v) |v|^(4/3)) to `lines`, all 576 of them,
    /// padded. Returns the line count. The caller continues after the budget, wherever the codes ended.
    /// Accesses up to 24 bytes after the last one within the budget.
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
    /// spectrum, `overlap` and `out` are [18 time slots][32 subbands], with the frequency inversion applied.
    void (*longTransform)(
        const HybridTables& tables, int blockType, const float* xr, int subband, float* overlap, float* out);
    void (*shortTransform)(
        const HybridTables& tables, const float* xr, int subband, float* overlap, float* out);
    /// The same without a spectrum: outputs the overlap and clears it.
    void (*flushOverlap)(int subband, float* overlap, float* out);
    int subbandGroup;

    /// All 18 passes of the polyphase stage for one channel. `history` holds `synthesisHistorySize` floats;
    /// `samples` takes 576, padded, with full scale at 1.0.
    void (*synthesis)(const SynthesisTables& tables, const float* subbands, float* history, float* samples);

    /// Converts `count` samples, a multiple of 16, to 16-bit PCM. `right` null writes one channel.
    void (*storePcm16)(const float* left, const float* right, int count, unsigned char* pcm);
};

/// For any processor of the build: vectors of four, or plain loops if the compiler has no vector types.
HARMONET_INTERNAL_API const DecoderKernels& BaselineKernels();
/// Plain loops, as for a compiler without vector types. Not selected if there is a faster version.
HARMONET_INTERNAL_API const DecoderKernels& PlainKernels();
/// Null if the compiler or the processor has no AVX2, FMA and BMI2.
HARMONET_INTERNAL_API const DecoderKernels* Avx2Kernels();
/// The fastest of these on this processor.
const DecoderKernels& SelectKernels();

} // namespace Quon
