#include "fuzz/FuzzTarget.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <random>
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

} // namespace

class FuzzReplay : public testing::TestWithParam<FuzzTarget>
{
};

// The initial inputs of the fuzzers, and inputs that exposed a fault.
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

/// Returns the input truncated, or with bytes changed, dropped or repeated.
std::vector<unsigned char> Damage(std::vector<unsigned char> bytes, std::minstd_rand& random)
{
    constexpr unsigned char ends[] = {0, 1, 0x7F, 0x80, 0xFF, '{', '}', '*', '"', '\n'};
    for (unsigned int changes = 1 + random() % 4; changes > 0 && !bytes.empty(); --changes) {
        const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(random() % bytes.size());
        const auto count = static_cast<std::ptrdiff_t>(random() % 16);
        const auto end = at + std::min(count, bytes.end() - at);
        switch (random() % 8) {
        case 0:
            bytes.erase(at, bytes.end());
            break;
        case 1:
            bytes.erase(at, end);
            break;
        case 2: {
            const std::vector<unsigned char> piece(at, end);
            bytes.insert(at, piece.begin(), piece.end());
            break;
        }
        case 3:
        case 4:
            *at = ends[random() % std::size(ends)];
            break;
        default:
            *at = static_cast<unsigned char>(random());
        }
    }
    return bytes;
}

// Finds faults that a few changes can cause, without a fuzzer.
TEST_P(FuzzReplay, EveryInputOfTheCorpusPassesWhenDamaged)
{
    constexpr int rounds = 60;
    std::minstd_rand random(5);
    for (const auto& path : FilesOf(std::filesystem::path(FUZZ_CORPUS) / GetParam().name)) {
        const std::vector<unsigned char> bytes = ReadBytes(path);
        for (int round = 0; round < rounds; ++round) {
            SCOPED_TRACE(path.filename().string() + ", round " + std::to_string(round));
            EXPECT_NO_THROW(GetParam().run(Damage(bytes, random)));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, FuzzReplay, testing::ValuesIn(fuzzTargets),
    [](const auto& target) { return std::string(target.param.name); });
