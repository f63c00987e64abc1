#pragma once

#include "harmonet/Export.h"
#include "harmonet/files/mpeg/DecoderKernels.h"
#include "harmonet/files/mpeg/DecoderTables.h"
#include "harmonet/files/mpeg/SideInfo.h"

namespace Quon
{

/// Converts one channel's decoded values of one granule to its spectrum: the band factors and the order of
/// lines. Functions on plain arrays for SndFileMP3.

/// The input of requantisation for a granule and channel.
struct RequantiseInput
{
    const GranuleInfo& info;
    const ScaleFactors& scaleFactors;
    const BandTable& bands;
    int lineCount; ///< Number of decoded lines; all lines after them are 0.
    bool byStandard; ///< Determine the end of a short block by the standard.
};

/// Multiplies the powers in `lines` (DecoderKernels::decodeLines) by their bands' factors and writes them to
/// `xr`, 576 of them; both arrays are padded. Long blocks keep their order; short blocks are reordered for
/// the hybrid transform: in a band of width n that begins at line 3b, line i of window w moves to 3b + 3i +
/// w. Returns the extent of the spectrum.
HARMONET_INTERNAL_API SpectrumLimits Requantise(const DecoderTables& tables, const DecoderKernels& kernels,
    const RequantiseInput& input, const float* lines, float* xr);

} // namespace Quon
