#include "harmonet/files/mpeg/DecoderTables.h"

#include <cmath>
#include <numbers>

namespace Quon
{

namespace
{

constexpr double pi = std::numbers::pi;

void FillPowers(float (&power)[maxSpectralValue + 1])
{
    for (int i = 0; i <= maxSpectralValue; ++i) {
        power[i] = static_cast<float>(i * std::cbrt(static_cast<double>(i)));
    }
}

void FillGains(float (&gain)[maxGain - minGain + 1])
{
    for (int i = minGain; i <= maxGain; ++i) {
        gain[i - minGain] = static_cast<float>(std::exp2((i - unityGain) / 4.0));
    }
}

/// Positions from 8 on occur in broken streams only. The tangent of one of them is -1 except for rounding, so
/// the formula has no finite value for it: silence is used instead.
void FillMpeg1Intensity(int position, float& left, float& right)
{
    const double ratio = std::tan(position * pi / 12);
    const bool isFinite = std::abs(1 + ratio) > 1e-9;
    left = isFinite ? static_cast<float>(ratio / (1 + ratio)) : 0.0F;
    right = isFinite ? static_cast<float>(1 / (1 + ratio)) : 0.0F;
}

void FillIntensity(IntensityTables& tables)
{
    for (int i = 0; i < 16; ++i) {
        FillMpeg1Intensity(i, tables.mpeg1Left[i], tables.mpeg1Right[i]);
    }
    for (int scale = 0; scale < 2; ++scale) {
        const double base = scale == 0 ? std::exp2(-0.25) : std::exp2(-0.5);
        for (int i = 0; i < 32; ++i) {
            const bool lowersLeft = i % 2 != 0;
            const double factor = std::pow(base, (i + 1) / 2);
            tables.mpeg2[scale][0][i] = static_cast<float>(lowersLeft ? factor : 1.0);
            tables.mpeg2[scale][1][i] = static_cast<float>(lowersLeft ? 1.0 : factor);
        }
    }
}

void FillAlias(AliasTables& tables)
{
    for (int i = 0; i < 8; ++i) {
        const double c = aliasConstants[i];
        const double cs = 1 / std::sqrt(1 + c * c);
        tables.cs[i] = static_cast<float>(cs);
        tables.ca[i] = static_cast<float>(c * cs);
    }
}

/// The standard's window shapes of the long transform.
double LongWindow(int blockType, int i)
{
    const double slow = std::sin(pi / 36 * (i + 0.5));
    if (blockType == 1 && i >= 18) {
        return i < 24 ? 1 : i < 30 ? std::sin(pi / 12 * (i - 18 + 0.5)) : 0;
    }
    if (blockType == 3 && i < 18) {
        return i < 6 ? 0 : i < 12 ? std::sin(pi / 12 * (i - 6 + 0.5)) : 1;
    }
    return slow;
}

/// The 36 outputs of the long transform are 18 cosine sums, unfolded: which of them, and with which sign.
int LongSum(int output)
{
    return output < 9 ? output + 9 : output < 27 ? 26 - output : output - 27;
}

double LongSign(int output)
{
    return output < 9 ? 1 : -1;
}

void FillHybrid(HybridTables& tables)
{
    for (int parity = 0; parity < 2; ++parity) {
        for (int lane = 0; lane < 4; ++lane) {
            tables.inversion[parity][lane] = parity * lane % 2 != 0 ? -1.0F : 1.0F;
        }
    }
    for (int blockType = 0; blockType < 4; ++blockType) {
        for (int i = 0; i < 36; ++i) {
            const double scaling = 2 * std::cos(pi / 72 * (2 * LongSum(i) + 1));
            const double factor = LongWindow(blockType, i) * LongSign(i) / scaling;
            for (int lane = 0; lane < 4; ++lane) {
                tables.longWindow[blockType][i][lane] =
                    static_cast<float>(factor) * tables.inversion[i % 2][lane];
            }
        }
    }
    for (int k = 0; k < 9; ++k) {
        tables.joinFactors[k] = static_cast<float>(1 / (2 * std::cos(pi / 36 * (2 * k + 1))));
    }
    for (int i = 0; i < 12; ++i) {
        tables.shortWindow[i] = static_cast<float>(std::sin(pi / 12 * (i + 0.5)));
    }
    for (int k = 0; k < 6; ++k) {
        for (int n = 0; n < 6; ++n) {
            tables.shortCosines[k][n] = static_cast<float>(std::cos(pi / 24 * (2 * k + 1) * (2 * n + 1)));
        }
    }
}

double WindowValue(int sample, int timeSlot)
{
    return synthesisWindow[sample + 32 * timeSlot] / 65536.0;
}

/// With C the 32 cosine sums, row r of the matrixing is C[16 + r] for r below 16, 0 for 16, -C[48 - r] for
/// rows 17 to 48 and -C[r - 48] above. Even time slots use row j for sample j and odd ones row 32 + j. So
/// both a sample j and its mirror 32 - j take C[16 + j] in even slots and C[16 - j] in odd ones.
void FillSynthesis(SynthesisTables& tables)
{
    int place = 0;
    for (int size = 32; size > 1; size /= 2) {
        for (int k = 0; k < size / 2; ++k) {
            tables.cosines[place++] = static_cast<float>(1 / (2 * std::cos(pi / (2 * size) * (2 * k + 1))));
        }
    }
    for (int t = 0; t < 16; ++t) {
        const bool odd = t % 2 != 0;
        tables.first[t] = static_cast<float>(odd ? -WindowValue(0, t) : WindowValue(0, t));
        tables.middle[t] = static_cast<float>(odd ? -WindowValue(16, t) : 0);
        for (int j = 0; j < 16; ++j) {
            tables.direct[t][j] = static_cast<float>(odd ? -WindowValue(j, t) : WindowValue(j, t));
            tables.mirrored[t][j] = j == 0 ? 0.0F : static_cast<float>(-WindowValue(32 - j, t));
        }
    }
}

} // namespace

DecoderTables::DecoderTables()
{
    FillPowers(power);
    BuildHuffmanTables(huffman, power);
    FillGains(gain);
    FillIntensity(intensity);
    FillAlias(alias);
    FillHybrid(hybrid);
    FillSynthesis(synthesis);
}

} // namespace Quon
