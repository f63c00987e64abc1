#include "fuzz/FuzzTarget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

using namespace Quon;

namespace
{

using Files = std::vector<std::filesystem::path>;

Files FilesOf(const std::filesystem::path& folder)
{
    Files files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<unsigned char> ReadBytes(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

class FuzzReplay : public testing::TestWithParam<FuzzTarget>
{
};

// The inputs with which the fuzzers begin, and what they have found so far: each was a fault once.
TEST_P(FuzzReplay, EveryInputOfTheCorpusPasses)
{
    const Files files = FilesOf(std::filesystem::path(FUZZ_CORPUS) / GetParam().name);
    ASSERT_FALSE(files.empty());
    for (const auto& path : files) {
        SCOPED_TRACE(path.filename().string());
        const std::vector<unsigned char> bytes = ReadBytes(path);
        EXPECT_NO_THROW(GetParam().run(bytes));
    }
}

// A fault that needs no more than a cut shows without a fuzzer.
TEST_P(FuzzReplay, EveryInputOfTheCorpusPassesWhenCutInHalf)
{
    for (const auto& path : FilesOf(std::filesystem::path(FUZZ_CORPUS) / GetParam().name)) {
        SCOPED_TRACE(path.filename().string());
        const std::vector<unsigned char> bytes = ReadBytes(path);
        EXPECT_NO_THROW(GetParam().run(FuzzBytes(bytes).first(bytes.size() / 2)));
    }
}

INSTANTIATE_TEST_SUITE_P(, FuzzReplay, testing::ValuesIn(fuzzTargets),
    [](const auto& target) { return std::string(target.param.name); });
