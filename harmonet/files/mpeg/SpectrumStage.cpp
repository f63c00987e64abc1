#include "harmonet/files/mpeg/SpectrumStage.h"

#include <algorithm>

namespace Quon
{

namespace
{

constexpr int mixedFirstShortBand = 3;
constexpr int lastSubband = subbandCount - 1;

/// The end of the values other than 0 among the first `count`.
int EndOfContent(const float* lines, int count)
{
    while (count > 0 && lines[count - 1] == 0.0F) {
        --count;
    }
    return count;
}

/// Scales the long bands up to the line `end`, a band boundary, and returns the highest one with content.
int RequantiseLong(const DecoderTables& tables, const DecoderKernels& kernels, const RequantiseInput& input,
    int end, const float* lines, float* xr)
{
    const int contentEnd = EndOfContent(lines, std::min(input.lineCount, end));
    const int* pretab = pretabRows[input.info.preflag];
    const int step = 2 * (input.info.scalefac_scale + 1);
    float factors[longBandCount];
    int bandCount = 0;
    for (; bandCount < longBandCount && input.bands.longStart[bandCount] < contentEnd; ++bandCount) {
        const int reduction = (input.scaleFactors.longBands[bandCount] + pretab[bandCount]) * step;
        factors[bandCount] = tables.Gain(input.info.gain[0] - reduction);
    }
    kernels.scaleBands(lines, input.bands.longStart, factors, bandCount, xr);
    std::fill(xr + input.bands.longStart[bandCount], xr + linesPerGranule, 0.0F);
    return bandCount - 1;
}

/// Scales one window's part of a short band and scatters it to its places; returns whether there was any
/// content. Without a branch per value: zeros are as common as other values here.
bool ScatterWindow(const float* lines, int count, float factor, float* xr)
{
    bool hasContent = false;
    for (int i = 0; i < count; ++i) {
        xr[shortWindowCount * i] = factor * lines[i];
        hasContent |= lines[i] != 0.0F;
    }
    return hasContent;
}

/// Scales the short bands from `firstBand` on while there are lines; fills in the windows' limits and returns
/// the last band visited, `firstBand` - 1 if none was.
int RequantiseShort(const DecoderTables& tables, const RequantiseInput& input, int firstBand,
    const float* lines, float* xr, int* windowLimits)
{
    const int step = 2 * (input.info.scalefac_scale + 1);
    int band = firstBand;
    for (; band < shortBandCount && input.bands.shortStart[band] < input.lineCount; ++band) {
        const int width = input.bands.shortWidth[band];
        for (int window = 0; window < shortWindowCount; ++window) {
            const int start = input.bands.shortStart[band] + window * width;
            const int count = std::clamp(input.lineCount - start, 0, width);
            const int reduction = input.scaleFactors.shortBands[window][band] * step;
            const float factor = tables.Gain(input.info.gain[1 + window] - reduction);
            if (ScatterWindow(lines + start, count, factor, xr + input.bands.shortStart[band] + window)) {
                windowLimits[window] = band;
            }
        }
    }
    return band - 1;
}

int SubbandOf(int highestLine)
{
    if (highestLine < 0) {
        return -1;
    }
    return highestLine >= linesPerGranule ? lastSubband : highestLine / linesPerSubband;
}

int HighestLongLine(const BandTable& bands, int bandLimit)
{
    return bandLimit < 0 ? -1 : bands.longStart[bandLimit + 1] - 1;
}

/// The highest line is computed with the width of the last band visited, even if a window ends below it. By
/// the standard it is the width of the window's own last band.
int HighestShortLine(const BandTable& bands, const int* windowLimits, int lastVisited, bool byStandard)
{
    int highest = -1;
    for (int window = 0; window < shortWindowCount; ++window) {
        if (windowLimits[window] >= 0) {
            const int widthOf = byStandard ? windowLimits[window] : lastVisited;
            const int width = shortWindowCount * bands.shortWidth[widthOf];
            highest = std::max(highest, bands.shortStart[windowLimits[window]] + width - 1);
        }
    }
    return highest;
}

} // namespace

SpectrumLimits Requantise(const DecoderTables& tables, const DecoderKernels& kernels,
    const RequantiseInput& input, const float* lines, float* xr)
{
    SpectrumLimits limits{{-1, -1, -1, -1}, -1};
    if (!input.info.IsShort()) {
        limits.bandLimit[0] = RequantiseLong(tables, kernels, input, linesPerGranule, lines, xr);
        limits.subbandLimit = SubbandOf(HighestLongLine(input.bands, limits.bandLimit[0]));
        return limits;
    }
    int firstShortBand = 0;
    if (input.info.IsMixed()) {
        limits.bandLimit[0] = RequantiseLong(tables, kernels, input, mixedLongLines, lines, xr);
        firstShortBand = mixedFirstShortBand;
    }
    else {
        std::fill(xr, xr + linesPerGranule, 0.0F);
    }
    const int lastVisited = RequantiseShort(tables, input, firstShortBand, lines, xr, limits.bandLimit + 1);
    limits.subbandLimit = SubbandOf(std::max(HighestLongLine(input.bands, limits.bandLimit[0]),
        HighestShortLine(input.bands, limits.bandLimit + 1, lastVisited, input.byStandard)));
    return limits;
}

} // namespace Quon
