#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Tool
{

/// A spectrogram of limited width for a sound of any length. When it is full, each pair of adjacent columns
/// is merged into one, which keeps the louder value of the two.
class Spectrogram
{
public:
    static constexpr std::size_t rows = 64;
    static constexpr std::size_t maxColumns = 320;

    explicit Spectrogram(int newRateHz);
    Spectrogram(const Spectrogram&) = delete;
    Spectrogram& operator=(const Spectrogram&) = delete;
    ~Spectrogram();

    /// Adds samples of one channel, with full scale at 1.
    void Add(const float* samples, std::size_t count);

    /// Returns one string for each column in the order of time, with a character for each row from the lowest
    /// frequency (40 Hz) to the highest (half the rate), spaced by a constant factor. The characters 0 to 9
    /// and a to z stand for -90 dB or less to 0 dB, the level of a full-scale sine.
    std::vector<std::string> GetColumns() const;

private:
    struct Transform;
    using Column = std::vector<float>; ///< Decibels.

    void AddColumn();
    void Halve();

    int rateHz;
    std::unique_ptr<Transform> transform;
    std::vector<float> window; ///< The samples of the next window.
    std::vector<Column> columns;
    std::size_t step = 1; ///< The number of windows in a column.
    std::size_t inLast = 0; ///< The number of windows in the last column so far.
};

} // namespace Tool
