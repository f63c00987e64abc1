#include "PlainStages.h"

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace Quon;

namespace PlainMpeg
{

namespace
{

constexpr double pi = std::numbers::pi;
constexpr int notIntensity = 7;

double Factor(int gain, int reduction)
{
    return std::pow(2.0, (gain - reduction - 210) / 4.0);
}

double Power(int value)
{
    return std::copysign(std::pow(std::abs(value), 4.0 / 3.0), value);
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

/// cos(pi / 2n (2i + 1 + n / 2)(2k + 1)), worked out once.
template<std::size_t n>
double TransformCosine(std::size_t i, std::size_t k)
{
    static const auto table = [] {
        std::array<std::array<double, n / 2>, n> all;
        for (std::size_t row = 0; row < n; ++row) {
            for (std::size_t column = 0; column < n / 2; ++column) {
                const auto product = static_cast<double>((2 * row + 1 + n / 2) * (2 * column + 1));
                all[row][column] = std::cos(pi / (2 * n) * product);
            }
        }
        return all;
    }();
    return table[i][k];
}

/// x[i] of n points from every `stride`th of n / 2 lines, windowed.
template<std::size_t n>
double Imdct(const double* lines, std::size_t stride, std::size_t i, int blockType)
{
    double sum = 0;
    for (std::size_t k = 0; k < n / 2; ++k) {
        sum += lines[stride * k] * TransformCosine<n>(i, k);
    }
    return sum * Window(blockType, static_cast<int>(i));
}

std::array<double, 36> TransformSubband(const double* lines, int blockType)
{
    std::array<double, 36> out = {};
    for (std::size_t i = 0; blockType != 2 && i < 36; ++i) {
        out[i] = Imdct<36>(lines, 1, i, blockType);
    }
    for (std::size_t window = 0; blockType == 2 && window < 3; ++window) {
        for (std::size_t i = 0; i < 12; ++i) {
            out[6 + 6 * window + i] += Imdct<12>(lines + window, 3, i, 2);
        }
    }
    return out;
}

/// cos(pi / 64 (16 + i)(2k + 1)), worked out once.
double MatrixCosine(std::size_t i, std::size_t k)
{
    static const auto table = [] {
        std::array<std::array<double, 32>, 64> all;
        for (std::size_t row = 0; row < 64; ++row) {
            for (std::size_t column = 0; column < 32; ++column) {
                all[row][column] = std::cos(pi / 64 * static_cast<double>((16 + row) * (2 * column + 1)));
            }
        }
        return all;
    }();
    return table[i][k];
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

} // namespace

int Bits::Take(int count)
{
    int result = 0;
    for (; count > 0; --count, ++position) {
        const auto byte = static_cast<std::size_t>(position / 8);
        const int bit = byte < bytes.size() ? bytes[byte] >> (7 - position % 8) & 1 : 0;
        result = 2 * result + bit;
    }
    return result;
}

std::array<int, 2> TakeCode(Bits& bits, int table)
{
    const HuffmanSource& source = huffmanSources[table];
    const int start = bits.GetPosition();
    for (int i = source.firstCode; i < source.firstCode + source.codeCount; ++i) {
        bits.SetPosition(start);
        if (bits.Take(huffmanCodes[i].length) == static_cast<int>(huffmanCodes[i].code)) {
            return {huffmanCodes[i].first, huffmanCodes[i].second};
        }
    }
    return {};
}

int DecodeValues(Bits& bits, const GranuleInfo& info, int budget, Values& values)
{
    const int end = bits.GetPosition() + budget;
    const auto left = [&] { return end - bits.GetPosition(); };
    const auto finish = [&](int value, int linbits) {
        if (value == 15) {
            value += bits.Take(linbits);
        }
        return value != 0 && bits.Take(1) != 0 ? -value : value;
    };
    values = {};
    std::size_t line = 0;
    const auto bigEnd = static_cast<std::size_t>(std::min(2 * info.big_values, 576));
    for (; line < bigEnd && left() >= 1; line += 2) {
        const int at = static_cast<int>(line);
        const int table = info.table_select[at >= info.region2Start ? 2 : at >= info.region1Start ? 1 : 0];
        if (huffmanSources[table].codeCount == 0) {
            continue;
        }
        const std::array<int, 2> pair = TakeCode(bits, table);
        values[line] = finish(pair[0], huffmanSources[table].linbits);
        values[line + 1] = finish(pair[1], huffmanSources[table].linbits);
    }
    for (; line < 576 && left() >= 1; line += 4) {
        const int quadruple = TakeCode(bits, 32 + info.count1table_select)[0];
        for (std::size_t i = 0; i < 4; ++i) {
            const int value = finish(quadruple >> (3 - i) & 1, 0);
            if (line + i < 576) {
                values[line + i] = value;
            }
        }
    }
    int lineCount = static_cast<int>(std::min<std::size_t>(line, 576));
    if (left() < 0 && lineCount >= 4) {
        lineCount -= 4;
    }
    bits.SetPosition(end);
    return lineCount;
}

Line Requantise(const GranuleInfo& info, const ScaleFactors& scaleFactors, const BandTable& bands,
    const Values& values, int lineCount, Limits& limits)
{
    Line xr = {};
    const int step = 2 * (info.scalefac_scale + 1);
    const bool mixed = info.block_type == 2 && info.mixed_block_flag != 0;
    const int longEnd = info.block_type != 2 ? 576 : mixed ? 36 : 0;
    int longLine = -1;
    for (int band = 0; band < 22; ++band) {
        const int factor = scaleFactors.longBands[band] + (info.preflag != 0 ? pretabRows[1][band] : 0);
        for (int i = bands.longStart[band]; i < std::min({bands.longStart[band + 1], longEnd, lineCount});
             ++i) {
            const auto at = static_cast<std::size_t>(i);
            xr[at] = Factor(info.gain[0], factor * step) * Power(values[at]);
            if (values[at] != 0) {
                limits.band[0] = band;
                longLine = bands.longStart[band + 1] - 1;
            }
        }
    }
    int highest = longLine;
    if (info.block_type == 2) {
        int lastVisited = 0;
        ForShortLines(bands, mixed ? 3 : 0, [&](int band, int window, int inStream, int place) {
            if (bands.shortStart[band] < lineCount) {
                lastVisited = band;
            }
            const int value = inStream < lineCount ? values[static_cast<std::size_t>(inStream)] : 0;
            if (value != 0) {
                const int reduction = scaleFactors.shortBands[window][band] * step;
                xr[static_cast<std::size_t>(place)] = Factor(info.gain[1 + window], reduction) * Power(value);
                limits.band[static_cast<std::size_t>(1 + window)] = band;
            }
        });
        for (std::size_t window = 1; window < 4; ++window) {
            if (limits.band[window] >= 0) {
                highest = std::max(
                    highest, bands.shortStart[limits.band[window]] + 3 * bands.shortWidth[lastVisited] - 1);
            }
        }
    }
    limits.subband = highest < 0 ? -1 : std::min(highest / 18, 31);
    return xr;
}

void Stereo(const StereoMode& mode, const GranuleInfo& first, const ScaleFactors& positions,
    const Limits& rightLimits, const BandTable& bands, Line& left, Line& right)
{
    const auto midSide = [&](std::size_t line, double scale) {
        const double middle = left[line];
        left[line] = (middle + right[line]) * scale;
        right[line] = (middle - right[line]) * scale;
    };
    if (!mode.intensityStereo) {
        for (std::size_t line = 0; line < 576; ++line) {
            midSide(line, 1);
        }
        return;
    }
    Values position;
    position.fill(notIntensity);
    const bool isShort = first.block_type == 2;
    const bool mixed = isShort && first.mixed_block_flag != 0;
    const auto fillLong = [&](int lastBand) {
        for (int band = rightLimits.band[0] + 1; band <= lastBand; ++band) {
            std::fill(position.begin() + bands.longStart[band], position.begin() + bands.longStart[band + 1],
                positions.longBands[band]);
        }
    };
    if (!isShort) {
        fillLong(20);
        std::fill(position.begin() + bands.longStart[21], position.end(),
            position[static_cast<std::size_t>(bands.longStart[20])]);
    }
    else {
        const int lowest = mixed ? 3 : 0;
        bool longToo = mixed;
        std::array<int, 3> start;
        for (std::size_t window = 0; window < 3; ++window) {
            start[window] = std::max(rightLimits.band[1 + window] + 1, lowest);
            longToo = longToo && start[window] <= 3;
        }
        ForShortLines(bands, lowest, [&](int band, int window, int inStream, int) {
            const int coded = std::min(band, 11);
            if (coded >= start[static_cast<std::size_t>(window)]) {
                position[static_cast<std::size_t>(inStream)] = positions.shortBands[window][coded];
            }
        });
        if (longToo) {
            fillLong(7);
        }
    }
    const auto mix = [&](int inStream, int place) {
        const int p = position[static_cast<std::size_t>(inStream)];
        const auto line = static_cast<std::size_t>(place);
        if (p == notIntensity) {
            if (mode.msStereo) {
                midSide(line, std::sqrt(0.5));
            }
            return;
        }
        double leftFactor = 1;
        double rightFactor = 1;
        if (mode.isMpeg1) {
            leftFactor = p == 6 ? 1 : std::tan(p * pi / 12) / (1 + std::tan(p * pi / 12));
            rightFactor = p == 6 ? 0 : 1 / (1 + std::tan(p * pi / 12));
        }
        else {
            const double base = std::pow(2.0, (first.scalefac_compress & 1) != 0 ? -0.5 : -0.25);
            (p % 2 != 0 ? leftFactor : rightFactor) = std::pow(base, (p + 1) / 2);
        }
        right[line] = rightFactor * left[line];
        left[line] = leftFactor * left[line];
    };
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
    for (std::size_t b = 18; b <= static_cast<std::size_t>(18 * boundaries); b += 18) {
        for (std::size_t i = 0; i < 8; ++i) {
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
    for (std::size_t subband = 0; subband < 32; ++subband) {
        std::array<double, 36> x = {};
        if (static_cast<int>(subband) < subbandLimit + 2) {
            const bool normal = info.mixed_block_flag != 0 && subband < 2;
            x = TransformSubband(xr.data() + 18 * subband, normal ? 0 : info.block_type);
        }
        for (std::size_t i = 0; i < 18; ++i) {
            out[subband][i] = x[i] + overlap[subband][i];
            overlap[subband][i] = x[18 + i];
        }
    }
    return out;
}

std::vector<double> Polyphase::Run(const Subbands& subbands)
{
    std::vector<double> samples;
    for (std::size_t slot = 0; slot < 18; ++slot) {
        std::copy_backward(v.begin(), v.end() - 64, v.end());
        for (std::size_t i = 0; i < 64; ++i) {
            v[i] = 0;
            for (std::size_t k = 0; k < 32; ++k) {
                const double inverted = slot % 2 != 0 && k % 2 != 0 ? -1 : 1;
                v[i] += MatrixCosine(i, k) * inverted * subbands[k][slot];
            }
        }
        for (std::size_t j = 0; j < 32; ++j) {
            double sum = 0;
            for (std::size_t i = 0; i < 8; ++i) {
                sum += v[128 * i + j] * synthesisWindow[64 * i + j] / 65536.0;
                sum += v[128 * i + 96 + j] * synthesisWindow[64 * i + 32 + j] / 65536.0;
            }
            samples.push_back(sum);
        }
    }
    return samples;
}

} // namespace PlainMpeg
