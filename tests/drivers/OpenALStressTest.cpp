#include "harmonet/instances/Sound.h"
#include "harmonet/instances/SoundObserver.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/support/Environment.h"
#include "tests/support/HostTest.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <set>
#include <thread>

namespace Quon
{
namespace
{

// An output of OpenAL that takes sound at the speed of a sound card and plays it to nobody.
const bool isQuietOutput = SetEnvironment("ALSOFT_DRIVERS", "null");

constexpr int rateHz = 22050;
constexpr int maxSounds = 6;

/// A game that plays, fades, appends, steers and stops sounds at random, from its frames and from inside the
/// events of its sounds, while the driver's thread plays them. Many more than there are channels, so that
/// they start and end as virtual voices, too.
class StressGame : public HostTest, public SoundObserver
{
protected:
    StressGame()
    {
        SetOption("Sound", "HarmonetOpenAL");
        SetOption("MaxSounds", std::to_string(maxSounds).c_str());
        // Some files are read while they play.
        SetOption("SoundCacheSize", "60000");
        for (int i = 0; i < 8; ++i) {
            const int length = i < 2 ? 4 * rateHz : (i + 1) * rateHz / 40;
            names.push_back(WriteWave("s" + std::to_string(i) + ".wav", {length, rateHz, 1 + i % 2}));
        }
        for (int i = 0; i < 48; ++i) {
            blocks.push_back({MemoryBlock({rateHz / 50 + i * 29, rateHz, 1 + i % 2}), nobody});
        }
        group.AddObserver(this);
    }

    static constexpr int nobody = 0;

    struct Block : MemoryBlock
    {
        int owner; ///< The sound that has it.
    };

    int Draw(int below) { return std::uniform_int_distribution<>(0, below - 1)(random); }
    int DrawFlags() { return Draw(2) * Sound::StartImmediately + Draw(2) * Sound::StartChgFrequency; }

    /// A block that nobody has, or null.
    Block* DrawBlock()
    {
        Block& block = blocks[static_cast<std::size_t>(Draw(48))];
        return block.owner == nobody ? &block : nullptr;
    }

    /// Nothing to a sound of another form, or without a queue.
    void Append(int id)
    {
        if (Block* const block = DrawBlock()) {
            const bool isTaken = group.CatSound(id, block->GetData(), block->GetSize(), &block->format);
            block->owner = isTaken ? id : nobody;
        }
    }

    void PlayBlocks()
    {
        Block* const block = isClosing ? nullptr : DrawBlock();
        if (!block) {
            return;
        }
        const int id = group.New2DSound(block->GetData(), block->GetSize(), &block->format);
        ASSERT_NE(id, 0);
        block->owner = id;
        Append(id);
        if (!group.StartSound(id, DrawFlags() | Sound::StartQueued)) {
            // Without a word to anybody: its blocks are back at once.
            group.DeleteSound(id);
            running.erase(id);
            for (Block& own : blocks) {
                own.owner = own.owner == id ? nobody : own.owner;
            }
        }
    }

    void PlayFile()
    {
        const int flags = DrawFlags() | (Draw(8) == 0 ? Sound::StartLooping : 0);
        group.Play2DSound(names[static_cast<std::size_t>(Draw(8))], nullptr, flags, Draw(3), Draw(3) * 20);
    }

    void Steer(int id)
    {
        const std::function<void()> ways[] = {
            [&] { group.FadeOutSound(id, static_cast<unsigned int>(Draw(120))); },
            [&] { group.SetFrequency(id, static_cast<unsigned long>(4000 + Draw(60000))); },
            [&] { group.GetRemainLength(id); },
            [&] { group.SetSoundPriority(id, Draw(3)); },
            [&] { group.StopSound(id); },
            [&] { Append(id); },
        };
        ways[Draw(static_cast<int>(std::size(ways)))]();
    }

    void DoSomething(int notThis = nobody)
    {
        if (Draw(4) == 0 || running.size() < 3 * maxSounds) {
            Draw(2) ? PlayFile() : PlayBlocks();
        }
        else if (const int id = *std::next(running.begin(), Draw(static_cast<int>(running.size())));
                 id != notThis) {
            Steer(id);
        }
    }

    void React(int id)
    {
        if (depth < 2 && Draw(3) == 0) {
            ++depth;
            DoSomething(id);
            --depth;
        }
    }

    void OnSoundBegin(int id, const PString&) override
    {
        EXPECT_TRUE(running.insert(id).second) << "began twice";
        React(id);
    }
    void OnSoundEnd(int id, const PString& name) override { OnSoundAbort(id, name, 0); }
    void OnSoundAbort(int id, const PString&, int) override
    {
        EXPECT_EQ(running.erase(id), 1U) << "ended without having begun";
        React(id);
    }
    void OnBufferFree(int id, void* data) override
    {
        const auto block =
            std::find_if(blocks.begin(), blocks.end(), [&](Block& own) { return own.GetData() == data; });
        EXPECT_EQ(block->owner, id) << "a block came back twice";
        block->owner = nobody;
        ++blocksBack;
        React(id);
    }

    std::mt19937 random{20263};
    std::vector<PString> names;
    std::vector<Block> blocks;
    std::set<int> running; ///< Sounds that have begun.
    int depth = 0;
    bool isClosing = false; ///< No sound can be made any more.
    int blocksBack = 0;
    Sound group;
};

TEST_F(StressGame, EverySoundBeginsAndEndsOnceAndEveryBlockIsReturnedOnce)
{
    ASSERT_TRUE(isQuietOutput);
    ASSERT_TRUE(Start());
    const bool isNightly = std::getenv("HARMONET_NIGHTLY") != nullptr;
    auto next = std::chrono::steady_clock::now();
    const auto end = next + (isNightly ? std::chrono::seconds(20) : std::chrono::milliseconds(1500));
    // By the machine's clock, since the driver plays by it: this is what a game's own pace is, and no waiting
    // for anything.
    for (; next < end && !HasFailure(); next += std::chrono::milliseconds(10)) {
        std::this_thread::sleep_until(next);
        for (int i = Draw(3); i > 0; --i) {
            DoSomething();
        }
        // Each fourth is a full update.
        Step(10);
    }
    EXPECT_GT(blocksBack, 5);
    isClosing = true;
    system.Done();
    EXPECT_EQ(running.size(), 0U);
    for (const Block& block : blocks) {
        EXPECT_EQ(block.owner, nobody);
    }
}

} // namespace
} // namespace Quon
