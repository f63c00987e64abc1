#include "harmonet/voices/NameIndex.h"
#include "harmonet/engine/Alloc.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Quon
{

TEST(NameIndex, ReusesNumbersAndMemory)
{
    const PString owner("owner");
    std::vector<PString> files(3000);
    std::ranges::generate(
        files, [number = 0]() mutable { return PString(std::to_string(number++).c_str()); });
    const std::size_t blocksBefore = Alloc::LiveBlocks();
    NameIndex names;
    for (const PString& file : files) {
        names.Use(file, owner);
    }
    EXPECT_NE(names.Find(files[7], owner), names.Find(files[7], PString()));
    for (std::uint32_t number = 1; number < files.size(); ++number) {
        names.GiveUp(number);
    }
    EXPECT_EQ(names.Find(files[7], owner), NameIndex::none);
    // The first is still there, and new names take numbers that were in use before.
    EXPECT_EQ(names.Find(files[0], owner), 0U);
    for (const PString& file : files) {
        EXPECT_LT(names.Use(file, owner), files.size());
    }
    names.GiveUp(0);
    for (std::uint32_t number = 0; number < files.size(); ++number) {
        names.GiveUp(number);
    }
    EXPECT_EQ(Alloc::LiveBlocks(), blocksBefore);
}

// Of sounds that differ nothing can be said without looking at them.
TEST(NameIndex, KnowsWhetherLikeSoundsAgree)
{
    NameIndex names;
    const std::uint32_t number = names.Use(PString("file"), PString());
    names.Enter(number, 100);
    names.Enter(number, 100);
    EXPECT_TRUE(names.At(number).isUniform);
    names.SetLength(number, 200);
    EXPECT_FALSE(names.At(number).isUniform);
    names.Leave(number);
    names.Leave(number);
    names.Enter(number, 300);
    EXPECT_TRUE(names.At(number).isUniform);
    EXPECT_EQ(names.At(number).lengthMs, 300U);
}

} // namespace Quon
