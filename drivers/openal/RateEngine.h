#pragma once

#include "drivers/openal/DriverOptions.h"
#include "drivers/openal/PcmFifo.h"

#include <cstdint>
#include <memory>
#include <span>

struct soxr;

namespace Quon
{

/// One conversion of a stream to another rate, by libsoxr, or a copy where the rates are equal and where
/// Harmonet was built without that library. Owned by a RateConverter. Making one allocates.
class RateEngine
{
public:
    RateEngine() = default;
    RateEngine(RateEngine&&) noexcept = default;
    RateEngine& operator=(RateEngine&&) noexcept = default;
    ~RateEngine();

    /// Whether rates can be converted at all.
    static bool IsAvailable();

    /// Begins at sample frame `begin` of a stream of `newWidth` channels, with a ratio that stays.
    void StartFixed(std::int64_t begin, int newWidth, double inputHz, double outputHz, RateGrade grade);

    /// Begins with a ratio, in sample frames of the stream for one of the output, that can glide to any other
    /// up to `maxRatio`.
    void StartVariable(std::int64_t begin, int newWidth, double newRatio, double maxRatio);

    /// Glides to another ratio, at most the largest of the start, over so many sample frames of the output.
    /// Of a variable one.
    void Glide(double newRatio, int outputFrames);

    bool IsCopy() const { return !resampler; }
    bool IsVariable() const { return isVariable; }
    /// Whether all of a stream that was whole has been converted.
    bool IsOver() const { return isFlushed; }

    /// As RateConverter::Convert(). After IsOver() it gives nothing any more.
    int Convert(const PcmFifo& input, bool isWhole, std::span<float> out);

    /// The sample frame of the stream at the next one of the output.
    double GetPosition() const { return position; }
    /// The next sample frame of the stream that it takes.
    std::int64_t GetFed() const { return fed; }

private:
    struct Deleter
    {
        void operator()(soxr* handle) const;
    };

    int Copy(const PcmFifo& input, std::span<float> out);
    int Resample(const PcmFifo& input, bool isWhole, std::span<float> out);
    void Advance(int outputFrames);

    std::unique_ptr<soxr, Deleter> resampler; ///< Null: a copy.
    std::size_t width = 1;
    std::int64_t begin = 0;
    std::int64_t fed = 0;
    std::int64_t made = 0; ///< Sample frames of the output.
    double ratio = 1.0;
    double largestRatio = 1.0; ///< Of a variable one.
    double position = 0.0;
    double ratioStep = 0.0; ///< Of a glide, for each sample frame of the output,
    int glideLeft = 0; ///< and how many of them it still takes.
    double glideEnd = 1.0;
    bool isVariable = false;
    bool isEnding = false; ///< The stream was whole when it was last asked for;
    bool isFlushed = false; ///< and all of it has come out.
};

} // namespace Quon
