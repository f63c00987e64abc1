#pragma once

#include "drivers/openal/DriverOptions.h"
#include "drivers/openal/PcmFifo.h"

#include <cstdint>
#include <memory>
#include <span>

struct soxr;

namespace Quon
{

/// One conversion of a stream to another rate by libsoxr; a copy if the rates are equal or Harmonet was built
/// without that library. Owned by a RateConverter. Its construction allocates.
class RateEngine
{
public:
    RateEngine() = default;
    RateEngine(RateEngine&&) noexcept = default;
    RateEngine& operator=(RateEngine&&) noexcept = default;
    ~RateEngine();

    /// Whether rates can be converted at all.
    static bool IsAvailable();

    /// Starts at sample frame `begin` of a stream of `newWidth` channels, with a fixed ratio.
    void StartFixed(std::int64_t begin, int newWidth, double inputHz, double outputHz, RateGrade grade);

    /// Starts with a ratio, in sample frames of the stream per sample frame of the output, that can glide to
    /// any other up to `maxRatio`.
    void StartVariable(std::int64_t begin, int newWidth, double newRatio, double maxRatio);

    /// Glides to another ratio, at most the maximum given at the start, over `outputFrames` sample frames of
    /// the output. For a variable ratio only.
    void Glide(double newRatio, int outputFrames);

    bool IsCopy() const { return !resampler; }
    bool IsVariable() const { return isVariable; }
    /// Whether a complete stream has been converted to its end.
    bool IsOver() const { return isFlushed; }

    /// Same as RateConverter::Convert(). Returns 0 after IsOver().
    int Convert(const PcmFifo& input, bool isWhole, std::span<float> out);

    /// The sample frame of the stream at the next one of the output.
    double GetPosition() const { return position; }
    /// The next sample frame of the stream to read.
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
    double largestRatio = 1.0; ///< Maximum of a variable ratio.
    double position = 0.0;
    double ratioStep = 0.0; ///< Change per sample frame of the output during a glide.
    int glideLeft = 0; ///< Sample frames of the output left in the glide.
    double glideEnd = 1.0;
    bool isVariable = false;
    bool isEnding = false; ///< The input was complete at the last request.
    bool isFlushed = false; ///< All of the output has been delivered.
};

} // namespace Quon
