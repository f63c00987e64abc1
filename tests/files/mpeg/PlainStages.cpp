#include "PlainDecoder.h"

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace Quon;

namespace PlainMpeg
{

namespace
{

constexpr double pi = std::numbers::pi;
constexpr int notIntensity = -1;

/// One code of a table, found by comparing with each code of the list; returns its two values.
std::array<int, 2> TakeCode(Bits& bits, int table)
{
    const HuffmanSource& source = huffmanSources[table];
    const int start = bits.position;
    for (int i = source.firstCode; i < source.firstCode + source.codeCount; ++i) {
        bits.position = start;
        if (bits.Take(huffmanCodes[i].length) == static_cast<int>(huffmanCodes[i].code)) {
            return {huffmanCodes[i].first, huffmanCodes[i].second};
        }
    }
    return {};
}

double Scaled(int value, int gain, int reduction)
{
    return std::copysign(std::pow(std::abs(value), 4.0 / 3.0), value) *
        std::pow(2.0, (gain - reduction - 210) / 4.0);
}

double Window(int blockType, int i)
{
    const double slow = std::sin(pi / 36 * (i + 0.5));
    switch (blockType) {
    case 1:
        return i < 18 ? slow : i < 24 ? 1 : i < 30 ? std::sin(pi / 12 * (i - 17.5)) : 0;
    case 2:
        return std::sin(pi / 12 * (i + 0.5));
    case 3:
        return i < 6 ? 0 : i < 12 ? std::sin(pi / 12 * (i - 5.5)) : i < 18 ? 1 : slow;
    default:
        return slow;
    }
}

/// cos(pi / half * number), computed once for each angle.
template<int half>
double Cosine(int number)
{
    static const auto table = [] {
        std::array<double, 2 * half> all;
        for (int i = 0; i < 2 * half; ++i) {
            all[i] = std::cos(pi / half * i);
        }
        return all;
    }();
    return table[number % (2 * half)];
}

/// x[i] of n points from every `stride`th of n / 2 lines, windowed.
template<int n>
double Imdct(const double* lines, int stride, int i, int blockType)
{
    double sum = 0;
    for (int k = 0; k < n / 2; ++k) {
        sum += lines[stride * k] * Cosine<2 * n>((2 * i + 1 + n / 2) * (2 * k + 1));
    }
    return sum * Window(blockType, i);
}

std::array<double, 36> TransformSubband(const double* lines, int blockType)
{
    std::array<double, 36> out = {};
    for (int i = 0; blockType != 2 && i < 36; ++i) {
        out[i] = Imdct<36>(lines, 1, i, blockType);
    }
    for (int window = 0; blockType == 2 && window < 3; ++window) {
        for (int i = 0; i < 12; ++i) {
            out[6 + 6 * window + i] += Imdct<12>(lines + window, 3, i, 2);
        }
    }
    return out;
}

/// Where a short block's line of the stream stands in the spectrum: by band, window and line.
template<class Visit>
void ForShortLines(const BandTable& bands, int firstBand, Visit visit)
{
    for (int band = firstBand; band < shortBandCount; ++band) {
        const int width = bands.shortWidth[band];
        for (int window = 0; window < 3; ++window) {
            for (int i = 0; i < width; ++i) {
                const int inStream = bands.shortStart[band] + window * width + i;
                visit(band, window, inStream, bands.shortStart[band] + 3 * i + window);
            }
        }
    }
}

/// The intensity position of each line, in the order of the stream.
Values IntensityPositions(
    const StereoMode& mode, const GranuleInfo& first, const RightChannel& right, const BandTable& bands)
{
    const auto positionOf = [&mode](int position, int mark) {
        return position == (mode.isMpeg1 || !mode.byStandard ? 7 : mark) ? notIntensity : position;
    };
    Values result;
    result.fill(notIntensity);
    const bool isShort = first.block_type == 2;
    const bool mixed = isShort && first.mixed_block_flag != 0;
    int longBands = mixed ? (mode.byStandard && !mode.isMpeg1 ? 6 : 8) : isShort ? 0 : 22;
    if (isShort) {
        ForShortLines(bands, mixed ? 3 : 0, [&](int band, int window, int inStream, int) {
            const int coded = std::min(band, 11);
            if (coded > right.limits.band[1 + window]) {
                result[inStream] = positionOf(
                    right.positions.shortBands[window][coded], right.marks.shortBands[window][coded]);
            }
            if (right.limits.band[1 + window] >= 3) {
                longBands = 0;
            }
        });
    }
    for (int band = 0; band < longBands; ++band) {
        const int coded = std::min(band, 20);
        if (coded > right.limits.band[0]) {
            std::fill(&result[bands.longStart[band]], result.data() + bands.longStart[band + 1],
                positionOf(right.positions.longBands[coded], right.marks.longBands[coded]));
        }
    }
    return result;
}

} // namespace

int Bits::Take(int count)
{
    int result = 0;
    for (; count > 0; --count, ++position) {
        const bool isThere = position / 8 < std::ssize(bytes);
        result = 2 * result + (isThere ? bytes[position / 8] >> (7 - position % 8) & 1 : 0);
    }
    return result;
}

int DecodeValues(Bits& bits, const GranuleInfo& info, int budget, Values& values)
{
    const int end = bits.position + budget;
    const auto left = [&] { return end - bits.position; };
    const auto finish = [&](int value, int linbits) {
        if (value == 15) {
            value += bits.Take(linbits);
        }
        return value != 0 && bits.Take(1) != 0 ? -value : value;
    };
    values = {};
    int line = 0;
    for (; line < std::min(2 * info.big_values, 576) && left() >= 1; line += 2) {
        const int region = line >= info.region2Start ? 2 : line >= info.region1Start ? 1 : 0;
        const int table = info.table_select[region];
        if (huffmanSources[table].codeCount != 0) {
            const std::array<int, 2> pair = TakeCode(bits, table);
            values[line] = finish(pair[0], huffmanSources[table].linbits);
            values[line + 1] = finish(pair[1], huffmanSources[table].linbits);
        }
    }
    for (; line < 576 && left() >= 1; line += 4) {
        const int quadruple = TakeCode(bits, 32 + info.count1table_select)[0];
        for (int i = 0; i < 4; ++i) {
            const int value = finish(quadruple >> (3 - i) & 1, 0);
            if (line + i < 576) {
                values[line + i] = value;
            }
        }
    }
    int lineCount = std::min(line, 576);
    if (left() < 0 && lineCount >= 4) {
        lineCount -= 4;
    }
    bits.position = end;
    return lineCount;
}

Line Requantise(const GranuleInfo& info, const ScaleFactors& scaleFactors, const BandTable& bands,
    const Values& values, int lineCount, Limits& limits, bool byStandard)
{
    Line xr = {};
    const int step = 2 * (info.scalefac_scale + 1);
    const bool isShort = info.block_type == 2;
    const bool mixed = isShort && info.mixed_block_flag != 0;
    const int longEnd = std::min(!isShort ? 576 : mixed ? 36 : 0, lineCount);
    int highest = -1;
    for (int band = 0; band < 22; ++band) {
        const int factor = scaleFactors.longBands[band] + (info.preflag != 0 ? pretabRows[1][band] : 0);
        for (int i = bands.longStart[band]; i < std::min(bands.longStart[band + 1], longEnd); ++i) {
            xr[i] = Scaled(values[i], info.gain[0], factor * step);
            if (values[i] != 0) {
                limits.band[0] = band;
                highest = bands.longStart[band + 1] - 1;
            }
        }
    }
    int lastVisited = 0;
    if (isShort) {
        ForShortLines(bands, mixed ? 3 : 0, [&](int band, int window, int inStream, int place) {
            if (bands.shortStart[band] < lineCount) {
                lastVisited = band;
            }
            if (inStream < lineCount && values[inStream] != 0) {
                const int reduction = scaleFactors.shortBands[window][band] * step;
                xr[place] = Scaled(values[inStream], info.gain[1 + window], reduction);
                limits.band[1 + window] = band;
            }
        });
    }
    for (int window = 1; window < 4; ++window) {
        if (limits.band[window] >= 0) {
            const int width = 3 * bands.shortWidth[byStandard ? limits.band[window] : lastVisited];
            highest = std::max(highest, bands.shortStart[limits.band[window]] + width - 1);
        }
    }
    limits.subband = highest < 0 ? -1 : std::min(highest / 18, 31);
    return xr;
}

void Stereo(const StereoMode& mode, const GranuleInfo& first, const RightChannel& rightChannel,
    const BandTable& bands, Line& left, Line& right)
{
    const auto midSide = [&](int line, double scale) {
        const double middle = left[line];
        left[line] = (middle + right[line]) * scale;
        right[line] = (middle - right[line]) * scale;
    };
    if (!mode.intensityStereo) {
        for (int line = 0; line < 576; ++line) {
            midSide(line, 1);
        }
        return;
    }
    const Values position = IntensityPositions(mode, first, rightChannel, bands);
    const auto mix = [&](int inStream, int line) {
        const int p = position[inStream];
        if (p == notIntensity) {
            if (mode.msStereo) {
                midSide(line, std::sqrt(0.5));
            }
            return;
        }
        double leftFactor = 1;
        double rightFactor = 1;
        if (mode.isMpeg1 && p == 9) {
            leftFactor = rightFactor = 0;
        }
        else if (mode.isMpeg1) {
            rightFactor = 1 / (1 + std::tan(p * pi / 12));
            leftFactor = std::tan(p * pi / 12) * rightFactor;
        }
        else {
            const double base = std::pow(2.0,
                ((mode.byStandard ? rightChannel.info : first).scalefac_compress & 1) != 0 ? -0.5 : -0.25);
            (p % 2 != 0 ? leftFactor : rightFactor) = std::pow(base, (p + 1) / 2);
        }
        right[line] = rightFactor * left[line];
        left[line] = leftFactor * left[line];
    };
    const bool isShort = first.block_type == 2;
    const bool mixed = isShort && first.mixed_block_flag != 0;
    for (int line = 0; line < (mixed ? 36 : isShort ? 0 : 576); ++line) {
        mix(line, line);
    }
    if (isShort) {
        ForShortLines(bands, mixed ? 3 : 0, [&](int, int, int inStream, int place) { mix(inStream, place); });
    }
}

void AliasReduction(const GranuleInfo& info, Line& xr)
{
    const int boundaries = info.block_type != 2 ? 31 : info.mixed_block_flag != 0 ? 1 : 0;
    for (int b = 18; b <= 18 * boundaries; b += 18) {
        for (int i = 0; i < 8; ++i) {
            const double c = aliasConstants[i];
            const double cs = 1 / std::sqrt(1 + c * c);
            const double u = xr[b - 1 - i];
            const double d = xr[b + i];
            xr[b - 1 - i] = u * cs - d * c * cs;
            xr[b + i] = d * cs + u * c * cs;
        }
    }
}

Subbands Hybrid(const GranuleInfo& info, int subbandLimit, const Line& xr, Subbands& overlap)
{
    Subbands out;
    for (int subband = 0; subband < subbandCount; ++subband) {
        std::array<double, 36> x = {};
        if (subband < subbandLimit + 2) {
            const bool normal = info.mixed_block_flag != 0 && subband < 2;
            x = TransformSubband(xr.data() + 18 * subband, normal ? 0 : info.block_type);
        }
        for (int i = 0; i < 18; ++i) {
            out[subband][i] = x[i] + overlap[subband][i];
            overlap[subband][i] = x[18 + i];
        }
    }
    return out;
}

std::vector<double> Polyphase(const Subbands& subbands, PolyphaseState& v)
{
    std::vector<double> samples;
    for (int slot = 0; slot < 18; ++slot) {
        std::copy_backward(v.begin(), v.end() - 64, v.end());
        for (int i = 0; i < 64; ++i) {
            v[i] = 0;
            for (int k = 0; k < 32; ++k) {
                const double inverted = slot % 2 != 0 && k % 2 != 0 ? -1 : 1;
                v[i] += Cosine<64>((16 + i) * (2 * k + 1)) * inverted * subbands[k][slot];
            }
        }
        for (int j = 0; j < 32; ++j) {
            double sum = 0;
            for (int i = 0; i < 8; ++i) {
                sum += v[128 * i + j] * synthesisWindow[64 * i + j] / 65536.0;
                sum += v[128 * i + 96 + j] * synthesisWindow[64 * i + 32 + j] / 65536.0;
            }
            samples.push_back(sum);
        }
    }
    return samples;
}

} // namespace PlainMpeg
