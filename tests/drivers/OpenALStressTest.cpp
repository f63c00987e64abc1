#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Music.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/instances/SoundObserver.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/support/HostTest.h"

#include <chrono>
#include <cstdlib>
#include <map>
#include <random>
#include <thread>

namespace Quon
{
namespace
{

// An output of OpenAL that takes sound at the speed of a sound card and plays it to nobody.
const bool isQuietOutput = setenv("ALSOFT_DRIVERS", "null", 1) == 0;

constexpr int rateHz = 22050;
constexpr int frameMs = 10;
constexpr int maxSounds = 6;

/// A game that plays, fades, appends, steers and stops sounds at random, from its frames and from inside the
/// events of its sounds. It plays many more than there are channels, so that they come and go unheard, too.
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
            const int length = i < 2 ? 4 * rateHz : (i + 1) * rateHz / 20;
            names.push_back(WriteWave("s" + std::to_string(i) + ".wav", {length, rateHz, 1 + i % 2}));
        }
        for (int i = 0; i < 48; ++i) {
            blocks.push_back(
                {std::make_unique<MemoryBlock>(PcmForm{rateHz / 50 + i * 29, rateHz, 1 + i % 2}), 0});
        }
        group.AddObserver(this);
    }

    struct Block
    {
        std::unique_ptr<MemoryBlock> memory;
        int owner; ///< The sound that has it, 0 if nobody has.
    };

    int Draw(int below) { return std::uniform_int_distribution<>(0, below - 1)(random); }
    const PString& DrawName() { return names[static_cast<std::size_t>(Draw(8))]; }
    int DrawFlags(bool canQueue)
    {
        const int flags = Draw(2) * Sound::StartImmediately + Draw(2) * Sound::StartChgFrequency;
        return flags + (canQueue ? Sound::StartQueued : Draw(4) == 0 ? Sound::StartLooping : 0);
    }

    /// A block that nobody has, or null.
    Block* FindBlock(int channels)
    {
        for (Block& block : blocks) {
            if (block.owner == 0 && block.memory->format.channels == channels) {
                return &block;
            }
        }
        return nullptr;
    }

    void Append(int id, int channels)
    {
        Block* const block = FindBlock(channels);
        if (!block) {
            return;
        }
        block->owner = id;
        if (group.CatSound(id, block->memory->GetData(), block->memory->GetSize(), &block->memory->format)) {
            ++appended;
        }
        else {
            block->owner = 0;
        }
    }

    void PlayBlocks()
    {
        const int channels = 1 + Draw(2);
        Block* const block = FindBlock(channels);
        if (!block) {
            return;
        }
        MemoryBlock& memory = *block->memory;
        block->owner = -1;
        const int id = Draw(2) ? group.New2DSound(memory.GetData(), memory.GetSize(), &memory.format)
                               : group.New3DSound(memory.GetData(), memory.GetSize(), &memory.format);
        block->owner = id;
        if (id == 0) {
            EXPECT_TRUE(isClosing);
            return;
        }
        streams[id] = channels;
        Append(id, channels);
        if (Draw(3) == 0) {
            const FXEcho echo = {50.0f, 30.0f, 40.0f, 30.0f, 0};
            group.SetFXEcho(id, &echo);
        }
        if (!group.StartSound(id, DrawFlags(true))) {
            StopAndForget(id);
        }
    }

    /// Without a word to anybody: its blocks are back at once.
    void StopAndForget(int id)
    {
        group.DeleteSound(id);
        for (Block& block : blocks) {
            if (block.owner == id) {
                block.owner = 0;
            }
        }
        streams.erase(id);
        running.erase(id);
    }

    void PlayFile()
    {
        const int flags = DrawFlags(false);
        if (Draw(2)) {
            group.Play2DSound(DrawName(), nullptr, flags, 1 + Draw(3), Draw(3) * 20);
            return;
        }
        Sound::Settings settings;
        settings.setDistance = true;
        settings.minDistance = 1.0F;
        settings.maxDistance = 8.0F;
        settings.cutout = Draw(2) == 0;
        settings.setCone = true;
        settings.innerConeAngle = settings.outerConeAngle = 360.0F;
        group.Play3DSound(DrawPlace(), DrawName(), nullptr, flags, 1 + Draw(3), settings, 0);
    }

    Vector3 DrawPlace() { return {static_cast<float>(Draw(12)), 0.0F, static_cast<float>(Draw(12))}; }

    void Steer(int id)
    {
        switch (Draw(9)) {
        case 0:
            group.FadeOutSound(id, static_cast<unsigned int>(Draw(120)));
            break;
        case 1:
            group.SetSoundGain(id, 0.01F * static_cast<float>(Draw(101)));
            break;
        case 2:
            group.SetFrequency(id, static_cast<unsigned long>(4000 + Draw(60000)));
            break;
        case 3:
            group.SetSoundPosition(id, DrawPlace());
            break;
        case 4:
            group.GetRemainLength(id);
            group.GetCurrentLength(id);
            break;
        case 5:
            group.SetSoundPriority(id, Draw(4));
            break;
        case 6:
            group.StopSound(id);
            break;
        default:
            if (const auto stream = streams.find(id); stream != streams.end()) {
                Append(id, stream->second);
            }
        }
    }

    void PlayMusic()
    {
        switch (Draw(5)) {
        case 0:
            music.Stop();
            break;
        case 1:
            music.FadeOut(Draw(200));
            break;
        case 2:
            music.Play(names[0], Draw(2) == 0);
            break;
        default:
            music.CrossFade(names[static_cast<std::size_t>(Draw(2))], Draw(200), true);
        }
    }

    void MoveListener()
    {
        listener.SetPosition(DrawPlace());
        if (Draw(4) == 0) {
            listener.ResetFXEnvReverb(0);
        }
        else if (Draw(2) == 0) {
            listener.SetFXEnvReverb(Draw(2) ? &fxEnvReverbCave : &fxEnvReverbRoom, 0, 0);
        }
    }

    void DoSomething(int notThis = 0)
    {
        const int what = Draw(16);
        if (what == 0) {
            PlayMusic();
        }
        else if (what == 1) {
            MoveListener();
        }
        else if (what < 4 || running.size() < 3 * maxSounds) {
            Draw(2) ? PlayFile() : PlayBlocks();
        }
        else {
            const auto sound = std::next(running.begin(), Draw(static_cast<int>(running.size())));
            if (sound->first != notThis) {
                Steer(sound->first);
            }
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
        EXPECT_TRUE(running.emplace(id, 0).second) << "began twice";
        React(id);
    }
    void OnSoundEnd(int id, const PString&) override
    {
        ++ends;
        OnOver(id);
    }
    void OnSoundAbort(int id, const PString&, int) override { OnOver(id); }
    void OnOver(int id)
    {
        EXPECT_EQ(running.erase(id), 1u) << "ended without having begun";
        streams.erase(id);
        React(id);
    }
    void OnBufferFree(int id, void* data) override
    {
        for (Block& block : blocks) {
            if (block.memory->GetData() == data) {
                EXPECT_EQ(block.owner, id) << "a block came back twice";
                block.owner = 0;
            }
        }
        ++blocksBack;
        if (const auto stream = streams.find(id); stream != streams.end() && Draw(2)) {
            Append(id, stream->second);
        }
        React(id);
    }

    std::mt19937 random{20263};
    std::vector<PString> names;
    std::vector<Block> blocks;
    std::map<int, int> running; ///< Sounds that have begun.
    std::map<int, int> streams; ///< Sounds of blocks, and their channels.
    int depth = 0;
    bool isClosing = false; ///< No sound can be made any more.
    int ends = 0;
    int appended = 0;
    int blocksBack = 0;
    Microphone listener;
    Music music;
    Sound group;
};

TEST_F(StressGame, EverySoundBeginsAndEndsOnceAndEveryBlockComesBackOnce)
{
    ASSERT_TRUE(isQuietOutput);
    ASSERT_TRUE(Start());
    listener.Activate();
    const bool isNightly = std::getenv("HARMONET_NIGHTLY") != nullptr;
    const auto frame = std::chrono::milliseconds(frameMs);
    auto next = std::chrono::steady_clock::now();
    const auto end = next + (isNightly ? std::chrono::seconds(20) : std::chrono::milliseconds(1500));
    // By the machine's clock, since the driver plays by it: this is what a game's own pace is, and no waiting
    // for anything.
    for (; next < end && !HasFailure(); next += frame) {
        std::this_thread::sleep_until(next);
        for (int i = Draw(3); i > 0; --i) {
            DoSomething();
        }
        // Each fourth is a full update.
        Step(frameMs);
    }
    EXPECT_GT(ends, 5);
    EXPECT_GT(appended, 5);
    EXPECT_GT(blocksBack, 5);
    isClosing = true;
    music.Stop();
    system.Done();
    EXPECT_EQ(running.size(), 0u);
    for (const Block& block : blocks) {
        EXPECT_EQ(block.owner, 0);
    }
}

} // namespace
} // namespace Quon
