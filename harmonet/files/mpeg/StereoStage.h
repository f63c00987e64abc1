#pragma once

#include "harmonet/files/mpeg/DecoderTables.h"
#include "harmonet/files/mpeg/SideInfo.h"

namespace Quon
{

/// The input of intensity stereo for a granule. The block type is that of the first channel; positions and
/// limits are those of the right channel.
struct IntensityInput
{
    bool isMpeg1;
    bool msStereo; ///< Mid/side applies to lines that are not intensity coded.
    const GranuleInfo& first;
    const ScaleFactors& positions;
    const SpectrumLimits& rightLimits;
    const BandTable& bands;
    int scale; ///< Finer (0) or coarser (1) positions, in MPEG-2.
    int lastMixedLongBand; ///< The highest long band of a mixed block that has a position.
    /// By band, the position that means "not intensity coded"; null for `notIntensityPosition` in all.
    const ScaleFactors* marks;
};

/// A line at this position is not intensity coded, in MPEG-1.
inline constexpr int notIntensityPosition = 7;

/// Intensity stereo on both channels' 576 lines, in place: the bands above the end of the right channel's
/// spectrum are distributed to the channels by position. Mid/side, if it is also on, is applied to the
/// remaining lines. A function on plain arrays for SndFileMP3.
void ApplyIntensityStereo(
    const IntensityTables& tables, const IntensityInput& input, float* left, float* right);

} // namespace Quon
