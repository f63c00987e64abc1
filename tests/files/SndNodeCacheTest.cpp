#include "tests/files/SoundFolder.h"

#include "harmonet/files/SndNodeCache.h"

#include <algorithm>
#include <random>

using namespace Quon;

namespace
{

class NodeCache : public SoundFolder
{
protected:
    /// A file whose sound data have that many bytes, all of them that value.
    void WriteSound(const std::string& name, std::size_t bytes, unsigned char value = 1) const
    {
        folder.Write(name, PcmWave(1, 8000, 8, Bytes(bytes, value)));
    }

    std::unique_ptr<SndFile> OpenSound(const std::string& name, int priority = 0)
    {
        return std::unique_ptr<SndFile>(cache.OpenSound(owner, PString(name.c_str()), priority));
    }

    SndNodeCache cache;
};

TEST_F(NodeCache, ASecondSoundOfAFileReadsTheSameBytesAtItsOwnPlace)
{
    folder.Write("sound", PcmWave(1, 8000, 8, Counting(50)));
    cache.SetLimit(1000);
    const auto first = OpenSound("sound");
    ASSERT_TRUE(first->IsCached());
    EXPECT_EQ(openFiles.GetCount(), 0) << "a cached sound needs no open file";
    folder.Remove("sound");
    const auto second = OpenSound("sound");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(cache.GetCount(), 1);
    EXPECT_EQ(cache.GetFreeBytes(), 950u);
    EXPECT_EQ(first->Load(), second->Load());
    first->SkipSamples(20);
    EXPECT_EQ(ReadFrames(*second, 2), (Bytes{1, 2}));
    EXPECT_EQ(ReadFrames(*first, 2), (Bytes{21, 22}));
    EXPECT_EQ(second->GetFileName(), PString("sound"));
    EXPECT_EQ(second->GetSoundLength(), first->GetSoundLength());
}

TEST_F(NodeCache, OnlyWhatIsSmallerThanTheFreeBytesIsKeptAndIdleOnesMakeRoom)
{
    struct Row
    {
        std::size_t bytes;
        bool isCached;
        int kept;
    };
    for (const Row& row : {Row{10, true, 3}, Row{79, true, 2}, Row{80, false, 1}, Row{200, false, 1}}) {
        SCOPED_TRACE(row.bytes);
        WriteSound("idle", 20);
        WriteSound("used", 20);
        WriteSound("new", row.bytes);
        cache.Flush();
        cache.SetLimit(100);
        OpenSound("idle", 9);
        const auto used = OpenSound("used");
        const auto file = OpenSound("new");
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->IsCached(), row.isCached);
        EXPECT_EQ(cache.GetCount(), row.kept);
        EXPECT_EQ(ReadAll(*file), Bytes(row.bytes, 1));
        cache.Clear();
        EXPECT_EQ(cache.GetLimit(), 0u);
        EXPECT_EQ(ReadAll(*used), Bytes(20, 1)) << "the bytes went while somebody read them";
    }
}

TEST_F(NodeCache, AFileThatStatesMoreThanItHoldsStreams)
{
    for (const std::uint32_t stated : {60u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        SCOPED_TRACE(stated);
        folder.Write(
            "sound", Wave(Chunk("fmt ", PcmFormat(1, 8000, 8)) + Chunk("data", Counting(50), stated)));
        cache.Flush();
        cache.SetLimit(0x200000000ul);
        const auto file = OpenSound("sound");
        ASSERT_NE(file, nullptr);
        EXPECT_FALSE(file->IsCached());
        EXPECT_EQ(cache.GetFreeBytes(), 0x200000000ul);
        EXPECT_EQ(ReadAll(*file), Counting(50));
    }
}

TEST_F(NodeCache, WhatIsNoSoundLeavesTheCacheAsItIs)
{
    folder.Write("noise", Counting(50));
    WriteSound("sound", 10);
    cache.SetLimit(100);
    OpenSound("sound");
    EXPECT_EQ(OpenSound("noise"), nullptr);
    EXPECT_EQ(OpenSound("missing"), nullptr);
    EXPECT_EQ(cache.GetCount(), 1);
    EXPECT_EQ(cache.GetFreeBytes(), 90u);
    EXPECT_EQ(openFiles.GetCount(), 0);
}

TEST_F(NodeCache, ADecodersDataAreCachedToo)
{
    constexpr int blockBytes = 40;
    Bytes block(blockBytes, 0x31);
    block[0] = 1;
    folder.Write("sound",
        Wave(Chunk("fmt ", AdpcmFormat(1, 8000, blockBytes, usualPairs)) + Chunk("data", block + block)));
    Bytes expected;
    {
        const auto streamed = Open("sound");
        ASSERT_NE(streamed, nullptr);
        expected = ReadAll(*streamed);
    }
    cache.SetLimit(1000);
    const auto loaded = OpenSound("sound");
    folder.Remove("sound");
    const auto hit = OpenSound("sound");
    ASSERT_NE(hit, nullptr);
    EXPECT_EQ(hit->FileType(), SndFile::FileAdpcm);
    EXPECT_EQ(hit->GetSoundSamples(), 2 * (2 * blockBytes - 12));
    EXPECT_EQ(ReadAll(*loaded), expected);
    EXPECT_EQ(ReadAll(*hit, 7), expected);
}

/// The cache's rules without its list: what is kept is looked through from end to end each time.
class PlainCache
{
public:
    explicit PlainCache(std::size_t newLimit)
        : limit(newLimit)
    {
    }

    struct Kept
    {
        int name;
        std::size_t size;
        int priority;
        int lastUse;
        int users;
    };

    std::size_t FreeBytes() const
    {
        std::size_t used = 0;
        for (const Kept& entry : kept)
            used += entry.size;
        return limit - used;
    }

    bool Open(int name, std::size_t size, int priority)
    {
        ++clock;
        for (Kept& entry : kept) {
            if (entry.name == name) {
                entry.priority = std::max(entry.priority, priority);
                entry.lastUse = clock;
                ++entry.users;
                return true;
            }
        }
        if (size > FreeBytes())
            Evict(size - FreeBytes());
        if (size >= FreeBytes())
            return false;
        kept.push_back({name, size, priority, clock, 1});
        return true;
    }

    std::size_t Evict(std::size_t bytes)
    {
        std::size_t freed = 0;
        while (freed < bytes) {
            auto worst = kept.end();
            for (auto entry = kept.begin(); entry != kept.end(); ++entry) {
                const bool isWorse = worst == kept.end() || entry->priority < worst->priority ||
                    (entry->priority == worst->priority && entry->lastUse < worst->lastUse);
                if (entry->users == 0 && isWorse)
                    worst = entry;
            }
            if (worst == kept.end())
                break;
            freed += worst->size;
            kept.erase(worst);
        }
        return freed;
    }

    void Close(int name)
    {
        for (Kept& entry : kept)
            entry.users -= entry.name == name ? 1 : 0;
    }

    std::vector<Kept> kept;

private:
    std::size_t limit;
    int clock = 0;
};

struct Playing
{
    int name;
    bool isCounted; ///< On an entry that the plain cache still has.
    std::unique_ptr<SndFile> file;
};

TEST_F(NodeCache, AgreesWithAPlainCacheOverManyRandomSteps)
{
    constexpr int soundCount = 12;
    constexpr std::size_t limit = 300;
    const auto sizeOf = [](int name) { return static_cast<std::size_t>(10 + 8 * name); };
    for (int name = 0; name < soundCount; ++name)
        WriteSound(std::to_string(name), sizeOf(name), static_cast<unsigned char>(name));
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        const auto draw = [&](int count) {
            return static_cast<int>(random() % static_cast<unsigned>(count));
        };
        cache.Clear();
        cache.SetLimit(limit);
        PlainCache plain(limit);
        std::vector<Playing> playing;
        for (int step = 0; step < 400; ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            const int action = draw(100);
            if (action < 50) {
                const int name = draw(soundCount);
                const int priority = draw(7) - 3;
                auto file = OpenSound(std::to_string(name), priority);
                ASSERT_NE(file, nullptr);
                const bool isKept = plain.Open(name, sizeOf(name), priority);
                ASSERT_EQ(file->IsCached(), isKept);
                playing.push_back({name, isKept, std::move(file)});
            }
            else if (action < 90 && !playing.empty()) {
                std::swap(playing[static_cast<std::size_t>(draw(static_cast<int>(playing.size())))],
                    playing.back());
                const Playing ending = std::move(playing.back());
                playing.pop_back();
                ASSERT_EQ(ReadAll(*ending.file),
                    Bytes(sizeOf(ending.name), static_cast<unsigned char>(ending.name)));
                if (ending.isCounted)
                    plain.Close(ending.name);
            }
            else if (action < 97) {
                const int bytes = draw(150);
                ASSERT_EQ(static_cast<std::size_t>(cache.Evict(bytes)),
                    plain.Evict(static_cast<std::size_t>(bytes)));
            }
            else {
                cache.Flush();
                plain.kept.clear();
                for (Playing& sound : playing)
                    sound.isCounted = false;
            }
            ASSERT_EQ(static_cast<std::size_t>(cache.GetCount()), plain.kept.size());
            ASSERT_EQ(cache.GetFreeBytes(), plain.FreeBytes());
        }
    }
}

} // namespace
