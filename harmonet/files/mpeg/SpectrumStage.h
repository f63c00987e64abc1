#pragma once

#include "harmonet/Export.h"
#include "harmonet/files/mpeg/DecoderKernels.h"
#include "harmonet/files/mpeg/DecoderTables.h"
#include "harmonet/files/mpeg/SideInfo.h"

namespace Quon
{

/// Turns one channel's decoded values of one granule into its spectrum: the band factors and the order of
/// lines. Functions on plain arrays for SndFileMP3.

/// What requantisation needs of a granule and channel.
struct RequantiseInput
{
    const GranuleInfo& info;
    const ScaleFactors& scaleFactors;
    const BandTable& bands;
    int lineCount; ///< Of `lines`; everything behind it is 0.
    bool byStandard; ///< Find the end of a short block by the standard.
};

/// Multiplies the powers in `lines` (DecoderKernels::decodeLines) by their bands' factors and writes them to
/// `xr`, 576 of them; both arrays are padded. Long blocks go line by line; short blocks are put in the order
/// of the hybrid transform on the way: in a band of width n that begins at line 3b, line i of window w stands
/// at 3b + 3i + w. Returns how far the spectrum reaches.
HARMONET_INTERNAL_API SpectrumLimits Requantise(const DecoderTables& tables, const DecoderKernels& kernels,
    const RequantiseInput& input, const float* lines, float* xr);

} // namespace Quon
