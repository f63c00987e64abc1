#include "harmonet/files/mpeg/StereoStage.h"

#include <algorithm>

namespace Quon
{

namespace
{

/// Marks lines that are not intensity coded.
constexpr int notIntensity = -1;
constexpr float halfPower = 0.70710677F;

constexpr int lastCodedLongBand = 20;
constexpr int lastCodedShortBand = 11;
constexpr int mixedFirstShortBand = 3;

/// The intensity position of each line, in the order of the stream: in short blocks window after window
/// within each band.
class LinePositions
{
public:
    explicit LinePositions(const IntensityInput& newInput)
        : input(newInput)
    {
        std::fill(positions, positions + linesPerGranule, notIntensity);
        if (!input.first.IsShort()) {
            FillLong(lastCodedLongBand);
            const int* start = input.bands.longStart;
            std::fill(positions + start[21], positions + start[22], positions[start[20]]);
        }
        else if (!input.first.IsMixed()) {
            FillShort(0);
        }
        else if (FillShort(mixedFirstShortBand) <= mixedFirstShortBand) {
            FillLong(input.lastMixedLongBand);
        }
    }

    int operator[](int line) const { return positions[line]; }

private:
    void FillLong(int lastBand)
    {
        const int* start = input.bands.longStart;
        for (int band = input.rightLimits.bandLimit[0] + 1; band <= lastBand; ++band) {
            const int mark = input.marks != nullptr ? input.marks->longBands[band] : notIntensityPosition;
            const int position = input.positions.longBands[band];
            std::fill(positions + start[band], positions + start[band + 1],
                position == mark ? notIntensity : position);
        }
    }

    /// Returns the highest band at which any window starts.
    int FillShort(int lowestBand)
    {
        int highestStart = lowestBand;
        for (int window = 0; window < shortWindowCount; ++window) {
            const int firstBand = std::max(input.rightLimits.bandLimit[1 + window] + 1, lowestBand);
            highestStart = std::max(highestStart, firstBand);
            for (int band = firstBand; band <= lastCodedShortBand; ++band) {
                const int mark =
                    input.marks != nullptr ? input.marks->shortBands[window][band] : notIntensityPosition;
                const int position = input.positions.shortBands[window][band];
                FillWindow(window, band, position == mark ? notIntensity : position);
            }
            FillWindow(window, lastCodedShortBand + 1, *Window(window, lastCodedShortBand));
        }
        return highestStart;
    }

    int* Window(int window, int band)
    {
        return positions + input.bands.shortStart[band] + window * input.bands.shortWidth[band];
    }

    void FillWindow(int window, int band, int position)
    {
        int* first = Window(window, band);
        std::fill(first, first + input.bands.shortWidth[band], position);
    }

    const IntensityInput& input;
    int positions[linesPerGranule];
};

/// Distributes one line after another to the channels.
class LineMixer
{
public:
    LineMixer(const IntensityTables& tables, const IntensityInput& input)
        : msStereo(input.msStereo)
    {
        leftFactors = input.isMpeg1 ? tables.mpeg1Left : tables.mpeg2[input.scale][0];
        rightFactors = input.isMpeg1 ? tables.mpeg1Right : tables.mpeg2[input.scale][1];
    }

    void Mix(int position, float& left, float& right) const
    {
        if (position != notIntensity) {
            right = rightFactors[position] * left;
            left = leftFactors[position] * left;
        }
        else if (msStereo) {
            const float middle = left;
            left = (middle + right) * halfPower;
            right = (middle - right) * halfPower;
        }
    }

private:
    bool msStereo;
    const float* leftFactors;
    const float* rightFactors;
};

} // namespace

void ApplyIntensityStereo(
    const IntensityTables& tables, const IntensityInput& input, float* left, float* right)
{
    const LinePositions positions(input);
    const LineMixer mixer(tables, input);
    const bool isShort = input.first.IsShort();
    const int longLines = !isShort ? linesPerGranule : input.first.IsMixed() ? mixedLongLines : 0;
    for (int line = 0; line < longLines; ++line) {
        mixer.Mix(positions[line], left[line], right[line]);
    }
    if (!isShort) {
        return;
    }
    for (int band = input.first.IsMixed() ? mixedFirstShortBand : 0; band < shortBandCount; ++band) {
        const int start = input.bands.shortStart[band];
        const int width = input.bands.shortWidth[band];
        for (int window = 0; window < shortWindowCount; ++window) {
            for (int i = 0; i < width; ++i) {
                const int place = start + shortWindowCount * i + window;
                mixer.Mix(positions[start + width * window + i], left[place], right[place]);
            }
        }
    }
}

} // namespace Quon
