#include "tests/drivers/OfflineRig.h"

#include "tests/support/Environment.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// OpenAL is not built with the sanitizer, which cannot see how its threads synchronise. Its own memory is
// excluded; all of ours is checked.
// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizer looks for this name.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions()
// NOLINTEND(bugprone-reserved-identifier)
{
    return "race:libopenal.so";
}

namespace Quon
{

namespace
{

// Before main(), since OpenAL reads its configuration when it is first used.
const bool hasNoUser = [] {
    for (const char* const variable : {"HOME", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "APPDATA"}) {
        SetEnvironment(variable, GetTestFolder().string());
    }
    return true;
}();

} // namespace

const std::filesystem::path& GetTestFolder()
{
    static const TempFolder folder;
    return folder.GetPath();
}

double Rendering::At(size_t sampleFrame, int side) const
{
    const size_t index = sampleFrame * static_cast<size_t>(channels) + static_cast<size_t>(side);
    return index < samples.size() ? samples[index] : 0.0;
}

double Rendering::LargestStep(size_t begin, size_t end) const
{
    double largest = 0.0;
    for (size_t i = std::max<size_t>(begin, 1); i < end; ++i) {
        for (const int side : {0, 1}) {
            largest = std::max(largest, std::abs(At(i, side) - At(i - 1, side)));
        }
    }
    return largest;
}

double Rendering::LargestBend(size_t begin, size_t end) const
{
    double largest = 0.0;
    for (size_t i = std::max<size_t>(begin, 2); i < end; ++i) {
        for (const int side : {0, 1}) {
            largest = std::max(largest, std::abs(At(i, side) - 2 * At(i - 1, side) + At(i - 2, side)));
        }
    }
    return largest;
}

double Rendering::Level(size_t begin, size_t end, int side) const
{
    double sum = 0.0;
    for (size_t i = begin; i < end; ++i) {
        sum += At(i, side) * At(i, side);
    }
    return std::sqrt(sum / static_cast<double>(end - begin));
}

size_t Rendering::FindFirst(double level, int side) const
{
    size_t sampleFrame = 0;
    while (sampleFrame < GetFrames() && std::abs(At(sampleFrame, side)) <= level) {
        ++sampleFrame;
    }
    return sampleFrame;
}

OfflineRig::OfflineRig(int maxChannels, int outputRateHz, const char* hrtf, const OptionValues& others)
    : DriverRig("HarmonetOpenAL")
{
    static int fileNumber = 0;
    path = (GetTestFolder() / ("heard, " + std::to_string(++fileNumber) + ".wav")).string();
    GetOptions().Set("OpenALRender", path.c_str());
    GetOptions().Set("OpenALHRTF", hrtf);
    for (const auto& [name, value] : others) {
        GetOptions().Set(name, value);
    }
    EXPECT_TRUE(Open(outputRateHz, maxChannels));
}

OfflineRig::~OfflineRig()
{
    Close();
    std::filesystem::remove(path);
}

} // namespace Quon
