#include "harmonet/engine/PString.h"
#include "harmonet/engine/String.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace Quon
{
namespace
{

TEST(PString, KeepsATextWhileReferencedAsTheTableGrowsAndShrinks)
{
    const std::size_t texts = PStringCache::Get()->GetCount();
    const std::size_t blocks = Alloc::LiveBlocks();
    {
        PString first("a text of its own");
        PString copy(first);
        PString moved(std::move(first));
        const PString& itself = copy;
        copy = itself;
        first = moved;
        moved = PString("another text of its own");
        EXPECT_EQ(PString::cache->GetCount(), texts + 2);
        EXPECT_STREQ(copy.GetText(), "a text of its own");
        EXPECT_TRUE(first == copy);
        EXPECT_TRUE(copy == PString(std::string_view("a text of its own and more").substr(0, 17)));
        EXPECT_FALSE(copy == PString("A text of its own"));
        EXPECT_EQ(PString("").GetText(), nullptr);
    }
    EXPECT_EQ(PString::cache->GetCount(), texts);
    EXPECT_EQ(Alloc::LiveBlocks(), blocks);
    const auto number = [](int i) { return "text number " + std::to_string(i); };
    std::vector<PString> strings;
    for (int i = 0; i < 5000; ++i) {
        strings.emplace_back(number(i).c_str());
    }
    for (int i = 0; i < 5000; i += 2) {
        strings[i] = PString();
    }
    EXPECT_EQ(PString::cache->GetCount(), texts + 2500);
    for (int i = 1; i < 5000; i += 2) {
        ASSERT_TRUE(strings[i] == PString(number(i).c_str())) << i;
    }
    strings.clear();
    EXPECT_EQ(PString::cache->GetCount(), texts);
}

TEST(PString, DoesNotTouchItsNodeWithoutACache)
{
    PStringCache* const cache = PStringCache::Get();
    PStringCache::Node* node = nullptr;
    {
        const PString string("kept through the end of the cache");
        node = cache->Create(reinterpret_cast<const unsigned char*>(string.GetText()));
        ASSERT_EQ(node->references.load(), 2U);
        PString::cache = nullptr;
    }
    EXPECT_TRUE(PString("made without a cache").IsEmpty());
    PString::cache = cache;
    EXPECT_EQ(node->references.load(), 2U);
    cache->Destroy(node);
    cache->Destroy(node);
}

/// Runs the work on four threads, each with its own number. The thread sanitizer finds races; the counts show
/// lost strings. The vectors of these tests do not come from Alloc, so that only nodes can be missing. The
/// work returns the number of wrong texts.
template<class Work>
void WorkOnFourThreads(Work work)
{
    const std::size_t textsBefore = PStringCache::Get()->GetCount();
    const std::size_t blocksBefore = Alloc::LiveBlocks();
    std::vector<std::thread> threads;
    for (unsigned number = 1; number <= 4; ++number) {
        threads.emplace_back([work, number] { EXPECT_EQ(work(number), 0); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(PString::cache->GetCount(), textsBefore);
    EXPECT_EQ(Alloc::LiveBlocks(), blocksBefore);
}

TEST(PString, IsSafeBetweenThreads)
{
    // The last reference of one thread meets the first of another again and again.
    WorkOnFourThreads([](unsigned number) {
        std::mt19937 random(number);
        std::vector<PString> held(8);
        int mismatches = 0;
        for (int i = 0; i < 20000; ++i) {
            const std::string text = "shared " + std::to_string(random() % 5);
            PString& place = held[random() % held.size()];
            place = random() % 3 == 0 ? held[random() % held.size()] : PString(text.c_str());
            mismatches += PString(text.c_str()).GetView() != text;
        }
        return mismatches;
    });
    // One text that is always about to go: whoever gives the last reference back waits for the lock while
    // another thread takes a new one.
    WorkOnFourThreads([](unsigned) {
        int mismatches = 0;
        for (int i = 0; i < 500000; ++i) {
            mismatches += PString("always about to go").GetView() != "always about to go";
        }
        return mismatches;
    });
}

TEST(String, InsertsAtAPosition)
{
    const struct
    {
        const char* start;
        const char* inserted;
        unsigned int position;
        const char* expected;
    } rows[] = {{"HarmonetNull", ".so", 12, "HarmonetNull.so"}, {"", "abc", 0, "abc"},
        {"ad", "bc", 1, "abcd"}, {"ab", "c", 99, "abc"}, {"ab", "", 1, "ab"}, {"ab", nullptr, 1, "ab"}};
    String string;
    for (const auto& row : rows) {
        string.Set(row.start);
        string.Ins(row.inserted, row.position);
        EXPECT_STREQ(string.GetText(), row.expected);
    }
    // Also parts of itself.
    string.Set("abcdefghijklmnopqrstuvwxyz");
    string.Ins(string.GetText() + 23, 0);
    EXPECT_STREQ(string.GetText(), "xyzabcdefghijklmnopqrstuvwxyz");
    EXPECT_EQ(string.GetLength(), 29U);
    string.Set(string.GetText() + 26);
    EXPECT_STREQ(string.GetText(), "xyz");
}

} // namespace
} // namespace Quon
