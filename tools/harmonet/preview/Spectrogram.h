#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Tool
{

/// How the spectrum of a sound changes with time, as a picture of limited width that takes any length: when
/// it is full, each two neighbouring columns become one, which keeps the louder of the two.
class Spectrogram
{
public:
    static constexpr std::size_t rows = 64;
    static constexpr std::size_t maxColumns = 320;

    explicit Spectrogram(int newRateHz);
    Spectrogram(const Spectrogram&) = delete;
    Spectrogram& operator=(const Spectrogram&) = delete;
    ~Spectrogram();

    /// Samples of one channel, with full scale at 1.
    void Add(const float* samples, std::size_t count);

    /// One text for each column, the first at the beginning, with a letter for each row from the lowest
    /// frequency (40 Hz) to the highest (half the rate), spaced by a constant factor. The letters go from 0
    /// to 9 and a to z, for -90 dB or less to 0 dB, a full sine being 0 dB.
    std::vector<std::string> GetColumns() const;

private:
    struct Transform;
    using Column = std::vector<float>; ///< Decibels.

    void AddColumn();
    void Halve();

    int rateHz;
    std::unique_ptr<Transform> transform;
    std::vector<float> window; ///< The samples that the next column is made of.
    std::vector<Column> columns;
    std::size_t step = 1; ///< How many windows become one column.
    std::size_t inLast = 0; ///< Of these, how many are in the last column.
};

} // namespace Tool
