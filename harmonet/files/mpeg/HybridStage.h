#pragma once

#include "harmonet/files/mpeg/DecoderKernels.h"
#include "harmonet/files/mpeg/DecoderTables.h"
#include "harmonet/files/mpeg/SideInfo.h"

namespace Quon
{

/// Selects the boundaries and the transform for the subbands of a granule. Functions on plain arrays for
/// SndFileMP3. `subbandLimit` is the highest subband with content, -1 if there is none.

/// The butterflies between subbands, in place: none in short blocks, only the first boundary in mixed blocks.
void ReduceAlias(const DecoderTables& tables, const DecoderKernels& kernels, const GranuleInfo& info,
    int subbandLimit, float* xr);

/// The hybrid transform of one channel. `overlap` and `out` are [18 time slots][32 subbands] with the
/// frequency inversion applied. Invalid lines above the highest transformed subband are cleared in `xr`.
void TransformHybrid(const DecoderTables& tables, const DecoderKernels& kernels, const GranuleInfo& info,
    int subbandLimit, float* xr, float* overlap, float* out);

} // namespace Quon
