#include "tests/files/SoundFolder.h"

#include "harmonet/files/SndNodeCache.h"

#include <algorithm>
#include <random>
#include <tuple>

using namespace Quon;

namespace
{

class NodeCache : public SoundFolder
{
protected:
    std::unique_ptr<SndFile> OpenSound(const std::string& name, int priority = 0)
    {
        return std::unique_ptr<SndFile>(cache.OpenSound(owner, PString(name.c_str()), priority));
    }

    SndNodeCache cache;
};

constexpr unsigned long limit = 120;

/// The cache's rules without its list: what is kept is looked through from end to end each time.
struct PlainCache
{
    struct Kept
    {
        int name;
        unsigned long size;
        int priority;
        int lastUse;
        int users;
        int holds;
    };

    unsigned long FreeBytes() const
    {
        unsigned long used = 0;
        for (const Kept& entry : kept) {
            used += entry.holds == 0 ? entry.size : 0;
        }
        return limit - used;
    }

    bool Open(int name, unsigned long size, int priority)
    {
        ++clock;
        for (Kept& entry : kept) {
            if (entry.name == name) {
                entry = {name, size, std::max(entry.priority, priority), clock, entry.users + 1, entry.holds};
                return true;
            }
        }
        if (size > FreeBytes()) {
            Evict(size - FreeBytes());
        }
        if (size >= FreeBytes()) {
            return false;
        }
        kept.push_back({name, size, priority, clock, 1, 0});
        return true;
    }

    std::vector<Kept>::iterator Find(int name)
    {
        return std::ranges::find(kept, name, [](const Kept& entry) { return entry.name; });
    }

    void Hold(int name, unsigned long size)
    {
        const auto found = Find(name);
        if (found != kept.end()) {
            ++found->holds;
        }
        else {
            kept.push_back({name, size, 0, 0, 0, 1});
        }
    }

    /// False if it is dropped at once.
    bool Release(int name)
    {
        const auto found = Find(name);
        if (found->holds > 1 || found->size < FreeBytes()) {
            --found->holds;
            found->lastUse = ++clock;
            return true;
        }
        kept.erase(found);
        return false;
    }

    unsigned long Evict(unsigned long bytes)
    {
        unsigned long freed = 0;
        while (freed < bytes) {
            const auto worst = std::ranges::min_element(kept, {}, [](const Kept& entry) {
                return std::tuple(entry.users > 0 || entry.holds > 0, entry.priority, entry.lastUse);
            });
            if (worst == kept.end() || worst->users > 0 || worst->holds > 0) {
                break;
            }
            freed += worst->size;
            kept.erase(worst);
        }
        return freed;
    }

    void Close(int name)
    {
        for (Kept& entry : kept) {
            entry.users -= entry.name == name ? 1 : 0;
        }
    }

    std::vector<Kept> kept;
    int clock = 0;
};

struct Playing
{
    int name;
    bool isCounted; ///< On an entry that the plain cache still has.
    std::unique_ptr<SndFile> file;
};

// All sizes and the limit are multiples of ten, so that what is new often needs just what is free.
TEST_F(NodeCache, AgreesWithAReferenceCacheOverRandomSteps)
{
    constexpr int soundCount = 12;
    const auto contentOf = [](int name) {
        return Bytes(static_cast<std::size_t>(10 + 10 * (name % 5)), static_cast<unsigned char>(name));
    };
    for (int name = 0; name < soundCount; ++name) {
        folder.Write(std::to_string(name), PcmWave(1, 8000, 8, contentOf(name)));
    }
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        const auto draw = [&](std::size_t count) { return static_cast<int>(random() % count); };
        cache.Clear();
        cache.SetLimit(limit);
        PlainCache plain;
        std::vector<Playing> playing;
        std::vector<std::pair<int, SndNode*>> held;
        for (int step = 0; step < 400; ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            const int action = draw(100);
            if (action < 50) {
                const int name = draw(soundCount);
                const int priority = draw(7) - 3;
                auto file = OpenSound(std::to_string(name), priority);
                ASSERT_NE(file, nullptr);
                const bool isKept = plain.Open(name, contentOf(name).size(), priority);
                ASSERT_EQ(file->IsCached(), isKept);
                playing.push_back({name, isKept, std::move(file)});
            }
            else if (action < 90 && !playing.empty()) {
                const auto ending = playing.begin() + draw(playing.size());
                ASSERT_EQ(ReadAll(*ending->file), contentOf(ending->name));
                if (ending->isCounted) {
                    plain.Close(ending->name);
                }
                playing.erase(ending);
            }
            else if (action < 94) {
                const int name = draw(soundCount);
                plain.Hold(name, contentOf(name).size());
                held.emplace_back(name, cache.Hold(owner, PString(std::to_string(name).c_str())));
                ASSERT_NE(held.back().second, nullptr);
            }
            else if (action < 97 && !held.empty()) {
                const auto ending = held.begin() + draw(held.size());
                const int name = ending->first;
                cache.Release(ending->second);
                held.erase(ending);
                if (!plain.Release(name)) {
                    for (Playing& sound : playing) {
                        sound.isCounted = sound.isCounted && sound.name != name;
                    }
                }
            }
            else if (action < 99) {
                const int bytes = draw(60);
                ASSERT_EQ(static_cast<unsigned long>(cache.Evict(bytes)),
                    plain.Evict(static_cast<unsigned long>(bytes)));
            }
            else {
                cache.Flush();
                plain.kept.clear();
                held.clear();
                for (Playing& sound : playing) {
                    sound.isCounted = false;
                }
            }
            ASSERT_EQ(cache.GetCount(),
                std::ranges::count(plain.kept, 0, [](const PlainCache::Kept& entry) { return entry.holds; }));
            for (const PlainCache::Kept& entry : plain.kept) {
                const PString name(std::to_string(entry.name).c_str());
                ASSERT_EQ(std::unique_ptr<SndFile>(cache.OpenHeld(owner, name)) != nullptr, entry.holds > 0);
            }
            ASSERT_EQ(cache.GetFreeBytes(), plain.FreeBytes());
        }
    }
}

} // namespace
