#pragma once

#include "tests/drivers/DriverRig.h"
#include "tests/drivers/FormulaFile.h"

#include <filesystem>

namespace Quon
{

/// A rendered sound file, as another library reads it.
struct Rendering
{
    int rateHz = 0;
    int channels = 0;
    bool isSigned16 = false;
    std::vector<double> samples; ///< Interleaved, from -1 to 1.

    size_t GetFrames() const { return channels > 0 ? samples.size() / static_cast<size_t>(channels) : 0; }
    /// Side 0 is left. 0 beyond the end.
    double At(size_t sampleFrame, int side = 0) const;
    /// The largest step from one sample frame to the next within [begin, end), on either side.
    double LargestStep(size_t begin, size_t end) const;
    /// The largest difference of one such step and the next: a click that no step shows.
    double LargestBend(size_t begin, size_t end) const;
    /// Root of the mean square over [begin, end).
    double Level(size_t begin, size_t end, int side) const;
    /// The first sample frame that is louder than `level` on this side; GetFrames() if none is.
    size_t FindFirst(double level, int side) const;
};

Rendering ReadRendering(const std::string& path);

/// A folder for the files of this process's tests, removed at its end. No user's configuration of OpenAL
/// reaches a program that links this.
const std::filesystem::path& GetTestFolder();

/// The OpenAL driver, rendering to its own file, which is removed with it.
class OfflineRig : public DriverRig
{
public:
    static constexpr int rateHz = 44100;

    using OptionValues = std::vector<std::pair<const char*, const char*>>;

    /// Opens the driver. `hrtf` is the option "OpenALHRTF"; null: not set.
    explicit OfflineRig(int maxChannels = 8, int outputRateHz = rateHz, const char* hrtf = nullptr,
        const OptionValues& others = {});
    ~OfflineRig() override;

    /// All that has been rendered so far. Rendering continues.
    Rendering Heard() const { return ReadRendering(path); }

private:
    std::string path;
};

} // namespace Quon
