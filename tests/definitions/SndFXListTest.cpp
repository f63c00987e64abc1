#include "harmonet/definitions/SndFXList.h"
#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/engine/Alloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <vector>

namespace Quon
{
namespace
{

constexpr FXChorus chorus = {10.0F, 20.0F, 30.0F, 4.0F, 1, 5.0F, 2};
constexpr FXGargle gargle = {50, 1};
constexpr FXEcho echo = {1.0F, 2.0F, 3.0F, 4.0F, 1};

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

std::vector<SndFX> GetOrder(const SndFXList& list)
{
    std::vector<SndFX> order;
    const unsigned char* place = list.GetEffectsArr();
    for (unsigned long left = list.GetNumEffects(); left > 0; --left) {
        const auto* desc = reinterpret_cast<const SndFXDesc*>(place);
        order.push_back(desc->effect);
        place += sizeof *desc + desc->size;
    }
    return order;
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

TEST_F(FXLists, TheBlockIsSizeAndCountAndThenTheEntriesWithoutPadding)
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

    // The quality stands in front of the room alone.
    list.AddFX(SndFXEnvReverb, &fxEnvReverbCave, 52, 3);
    words = GetWords(list);
    ASSERT_EQ(words.size(), (60U + 60U) / 4);
    EXPECT_TRUE(std::ranges::equal(
        std::span(words).subspan(15, 4), std::vector{0U, 52U, 3U, static_cast<std::uint32_t>(-1000)}));
    EXPECT_EQ(std::memcmp(list.GetFXDesc(SndFXEnvReverb)->GetRecord(), &fxEnvReverbCave, 48), 0);
}

TEST_F(FXLists, AnEffectThatIsThereIsOverwrittenInItsPlace)
{
    list.AddFX(SndFXChorus, &chorus, sizeof chorus, 0);
    list.AddFX(SndFXGargle, &gargle, sizeof gargle, 0);
    const void* block = list.GetBlock();
    FXChorus other = chorus;
    other.depth = 77.0F;
    list.AddFX(SndFXChorus, &other, sizeof other, 0);
    EXPECT_EQ(list.GetBlock(), block);
    EXPECT_EQ(GetOrder(list), (std::vector{SndFXChorus, SndFXGargle}));
    EXPECT_EQ(static_cast<const FXChorus*>(list.GetFXDesc(SndFXChorus)->GetRecord())->depth, 77.0F);
}

TEST_F(FXLists, TheMaskTakesOutItsEffectsAndKeepsTheOrderOfTheOthers)
{
    list.AddFX(SndFXEcho, &echo, sizeof echo, 0);
    list.AddFX(SndFXEnvReverb, &fxEnvReverbForest, 52, 7);
    list.AddFX(SndFXChorus, &chorus, sizeof chorus, 0);
    const struct
    {
        unsigned long mask;
        std::vector<SndFX> kept;
    } rows[] = {
        {0x1FF, {SndFXEcho, SndFXEnvReverb, SndFXChorus}},
        {0x1FE, {SndFXEcho, SndFXChorus}},
        {0x1FD, {SndFXEcho, SndFXEnvReverb}},
        {0x001, {SndFXEnvReverb}},
        {0x000, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mask);
        SndFXList kept = list.DuplicateFiltered(row.mask);
        EXPECT_EQ(GetOrder(kept), row.kept);
        if (const SndFXDesc* room = kept.GetFXDesc(SndFXEnvReverb)) {
            EXPECT_EQ(room->GetQuality(), 7);
            EXPECT_EQ(std::memcmp(room->GetRecord(), &fxEnvReverbForest, 48), 0);
        }
        kept.Clear();
    }
}

// A size that does not even hold the quality comes from a broken caller; the sanitizer watches the edges.
TEST_F(FXLists, ARoomOfNoSizeStoresNothing)
{
    list.AddFX(SndFXEnvReverb, &fxEnvReverbCave, 2, 3);
    EXPECT_EQ(list.GetNumEffects(), 1U);
}

TEST(EnvReverbPresets, HoldTheAcousticsOfTheirPlaces)
{
    const FXEnvReverb quarry = {
        -1000, -1000, 0.0F, 1.49F, 0.83F, -10000, 0.061F, 500, 0.025F, 100.0F, 100.0F, 5000.0F};
    const FXEnvReverb pipe = {
        -1000, -1000, 0.0F, 2.81F, 0.14F, 429, 0.014F, 648, 0.021F, 80.0F, 60.0F, 5000.0F};
    EXPECT_EQ(std::memcmp(&fxEnvReverbQuarry, &quarry, sizeof quarry), 0);
    EXPECT_EQ(std::memcmp(&fxEnvReverbSewerPipe, &pipe, sizeof pipe), 0);
    EXPECT_EQ(std::memcmp(&fxEnvReverbDefault, &fxEnvReverbGeneric, sizeof quarry), 0);
    EXPECT_EQ(GetFXDefault(SndFXEnvReverb).record, &fxEnvReverbDefault);
}

} // namespace
} // namespace Quon
