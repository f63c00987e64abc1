#include "harmonet/definitions/SndFXList.h"
#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/engine/Alloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <span>
#include <vector>

namespace Quon
{
namespace
{

constexpr FXChorus chorus = {10.0F, 20.0F, 30.0F, 4.0F, 1, 5.0F, 2};
constexpr FXGargle gargle = {50, 1};

/// The words of a list's block, as a driver in another library sees them.
std::vector<std::uint32_t> GetWords(const SndFXList& list)
{
    std::vector<std::uint32_t> words;
    if (const void* block = list.GetBlock()) {
        std::uint32_t bytes;
        std::memcpy(&bytes, block, sizeof bytes);
        words.resize(bytes / sizeof(std::uint32_t));
        std::memcpy(words.data(), block, bytes);
    }
    return words;
}

class FXLists : public testing::Test
{
protected:
    ~FXLists() override
    {
        list.Clear();
        EXPECT_EQ(Alloc::LiveBlocks(), blocksBefore);
    }

    const std::size_t blocksBefore = Alloc::LiveBlocks();
    SndFXList list;
};

TEST_F(FXLists, TheBlockHasSizeCountAndUnpaddedEntries)
{
    list.AddFX(SndFXChorus, &chorus, sizeof chorus, 0);
    EXPECT_EQ(GetWords(list).at(0), 44U);
    list.AddFX(SndFXGargle, &gargle, sizeof gargle, 0);
    std::vector<std::uint32_t> words = GetWords(list);
    ASSERT_EQ(words.size(), 60U / 4);
    // Size, count, chorus, bytes of its record, and 10.0, its first field.
    EXPECT_TRUE(std::ranges::equal(std::span(words).first(5), std::vector{60U, 2U, 1U, 28U, 0x41200000U}));
    // Its last field, and then the gargle.
    EXPECT_TRUE(std::ranges::equal(std::span(words).last(5), std::vector{2U, 7U, 8U, 50U, 1U}));

    // Only a room is preceded by its quality.
    list.AddFX(SndFXEnvReverb, &fxEnvReverbCave, 52, 3);
    words = GetWords(list);
    ASSERT_EQ(words.size(), (60U + 60U) / 4);
    EXPECT_TRUE(std::ranges::equal(
        std::span(words).subspan(15, 4), std::vector{0U, 52U, 3U, static_cast<std::uint32_t>(-1000)}));
    EXPECT_TRUE(std::ranges::equal(
        std::span(words).last(12), std::bit_cast<std::array<std::uint32_t, 12>>(fxEnvReverbCave)));
}

// A size too small for the quality is a fault of the caller; the address sanitizer detects overruns.
TEST_F(FXLists, AnEmptyRoomStoresNothing)
{
    list.AddFX(SndFXEnvReverb, &fxEnvReverbCave, 2, 3);
    EXPECT_EQ(list.GetNumEffects(), 1U);
}

} // namespace
} // namespace Quon
