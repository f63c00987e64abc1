#include "tools/harmonet/preview/Spectrogram.h"

#include <kiss_fftr.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <functional>
#include <numbers>
#include <string_view>

namespace Tool
{

namespace
{

constexpr std::size_t windowFrames = 1024;
constexpr std::size_t hopFrames = windowFrames / 4;
constexpr std::size_t bins = windowFrames / 2 + 1;
constexpr float leastDecibels = -90.0F;

std::vector<float> MakeHann()
{
    std::vector<float> hann(windowFrames);
    for (std::size_t i = 0; i < windowFrames; ++i) {
        const double phase = 2.0 * std::numbers::pi * static_cast<double>(i) / windowFrames;
        hann[i] = static_cast<float>(0.5 - 0.5 * std::cos(phase));
    }
    return hann;
}

/// Returns the first bin of a row.
std::size_t FirstBin(std::size_t row, int rateHz)
{
    constexpr double lowestHz = 40.0;
    const double highestHz = std::max(rateHz / 2.0, 2.0 * lowestHz);
    const double hz = lowestHz *
        std::pow(highestHz / lowestHz, static_cast<double>(row) / static_cast<double>(Spectrogram::rows));
    const auto bin = static_cast<std::size_t>(std::lround(hz / rateHz * static_cast<double>(windowFrames)));
    return std::min(bin, bins - 1);
}

void KeepLouder(std::vector<float>& column, const std::vector<float>& other)
{
    std::transform(column.begin(), column.end(), other.begin(), column.begin(),
        [](float a, float b) { return std::max(a, b); });
}

} // namespace

struct Spectrogram::Transform
{
    struct Free
    {
        void operator()(kiss_fftr_state* made) const { kiss_fftr_free(made); }
    };

    std::unique_ptr<kiss_fftr_state, Free> state{
        kiss_fftr_alloc(static_cast<int>(windowFrames), 0, nullptr, nullptr)};
    std::vector<float> hann = MakeHann();
    std::vector<float> in = std::vector<float>(windowFrames);
    std::vector<kiss_fft_cpx> out = std::vector<kiss_fft_cpx>(bins);
};

Spectrogram::Spectrogram(int newRateHz)
    : rateHz(newRateHz)
    , transform(std::make_unique<Transform>())
{
}

Spectrogram::~Spectrogram() = default;

void Spectrogram::Add(const float* samples, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        window.push_back(samples[i]);
        if (window.size() == windowFrames) {
            AddColumn();
            window.erase(window.begin(), window.begin() + hopFrames);
        }
    }
}

std::vector<std::string> Spectrogram::GetColumns() const
{
    constexpr std::string_view letters = "0123456789abcdefghijklmnopqrstuvwxyz";
    std::vector<std::string> texts;
    for (const Column& column : columns) {
        std::string text;
        for (const float decibels : column) {
            const float level = std::clamp(1.0F - decibels / leastDecibels, 0.0F, 1.0F);
            text += letters[static_cast<std::size_t>(
                std::lround(level * static_cast<float>(letters.size() - 1)))];
        }
        texts.push_back(text);
    }
    return texts;
}

void Spectrogram::AddColumn()
{
    Transform& fft = *transform;
    std::transform(window.begin(), window.end(), fft.hann.begin(), fft.in.begin(), std::multiplies<>());
    kiss_fftr(fft.state.get(), fft.in.data(), fft.out.data());
    Column column(rows, leastDecibels);
    for (std::size_t row = 0; row < rows; ++row) {
        const std::size_t first = FirstBin(row, rateHz);
        const std::size_t end = std::max(FirstBin(row + 1, rateHz), first + 1);
        for (std::size_t bin = first; bin < end; ++bin) {
            // A full-scale sine has a magnitude of a quarter of the window length.
            const float level = std::abs(std::complex<float>(fft.out[bin].r, fft.out[bin].i)) * 4.0F /
                static_cast<float>(windowFrames);
            column[row] = std::max(column[row], 20.0F * std::log10(std::max(level, 1e-9F)));
        }
    }
    if (inLast == 0 || inLast == step) {
        columns.push_back(column);
        inLast = 0;
    }
    else {
        KeepLouder(columns.back(), column);
    }
    ++inLast;
    if (columns.size() > maxColumns) {
        Halve();
    }
}

void Spectrogram::Halve()
{
    std::vector<Column> halved;
    for (std::size_t i = 0; i + 1 < columns.size(); i += 2) {
        KeepLouder(columns[i], columns[i + 1]);
        halved.push_back(columns[i]);
    }
    const bool hasRest = columns.size() % 2 != 0;
    if (hasRest) {
        halved.push_back(columns.back());
    }
    columns = halved;
    inLast = hasRest ? inLast : 2 * step;
    step *= 2;
}

} // namespace Tool
