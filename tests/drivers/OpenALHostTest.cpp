#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/instances/Sound.h"
#include "tests/drivers/FormulaFile.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/support/HostTest.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

#include <cstdlib>
#include <limits>
#include <malloc.h>

namespace Quon
{
namespace
{

constexpr int rateHz = 44100;

// An output of OpenAL that takes sound at the speed of a sound card and plays it to nobody.
const bool isQuietOutput = setenv("ALSOFT_DRIVERS", "null", 1) == 0;

template<class Function>
Function GetFunction(const char* name)
{
    return reinterpret_cast<Function>(alcGetProcAddress(nullptr, name));
}

const auto setThreadContext = GetFunction<PFNALCSETTHREADCONTEXTPROC>("alcSetThreadContext");
const auto getThreadContext = GetFunction<PFNALCGETTHREADCONTEXTPROC>("alcGetThreadContext");

/// What a host has of OpenAL for itself: a device with a context and one source in it.
class HostsOwn
{
public:
    explicit HostsOwn(float newGain)
        : gain(newGain)
    {
        device = GetFunction<LPALCLOOPBACKOPENDEVICESOFT>("alcLoopbackOpenDeviceSOFT")(nullptr);
        const ALCint attributes[] = {ALC_FORMAT_CHANNELS_SOFT, ALC_STEREO_SOFT, ALC_FORMAT_TYPE_SOFT,
            ALC_FLOAT_SOFT, ALC_FREQUENCY, rateHz, 0};
        context = alcCreateContext(device, attributes);
        Visit([this] {
            alListenerf(AL_GAIN, gain);
            alGenSources(1, &source);
            alSourcef(source, AL_GAIN, gain);
        });
    }
    ~HostsOwn()
    {
        alcDestroyContext(context);
        alcCloseDevice(device);
    }

    ALCcontext* GetContext() const { return context; }

    void ExpectUntouched() const
    {
        Visit([this] {
            ALfloat value = 0.0f;
            alGetListenerf(AL_GAIN, &value);
            EXPECT_EQ(value, gain);
            alGetSourcef(source, AL_GAIN, &value);
            EXPECT_EQ(value, gain);
            ALint state = 0;
            alGetSourcei(source, AL_SOURCE_STATE, &state);
            EXPECT_EQ(state, AL_INITIAL);
            ALuint next = 0;
            alGenSources(1, &next);
            EXPECT_EQ(next, source + 1) << "somebody has made sources here";
            alDeleteSources(1, &next);
            EXPECT_EQ(alGetError(), AL_NO_ERROR);
        });
    }

private:
    template<class Action>
    void Visit(const Action& action) const
    {
        ALCcontext* const before = getThreadContext();
        setThreadContext(context);
        action();
        setThreadContext(before);
    }

    const float gain;
    ALCdevice* device;
    ALCcontext* context;
    ALuint source = 0;
};

TEST(OpenALHost, ItsContextsOfProcessAndThreadAreLeftAloneByEveryCall)
{
    ASSERT_TRUE(isQuietOutput);
    const HostsOwn ofProcess(0.25f);
    const HostsOwn ofThread(0.75f);
    for (const bool isThreadSet : {true, false}) {
        for (const bool isRendered : {false, true}) {
            SCOPED_TRACE(std::string(isRendered ? "rendered" : "live") +
                (isThreadSet ? ", with a context of the thread" : ""));
            alcMakeContextCurrent(ofProcess.GetContext());
            setThreadContext(isThreadSet ? ofThread.GetContext() : nullptr);
            ALCcontext* const current = (isThreadSet ? ofThread : ofProcess).GetContext();

            const auto file = MakeFile({rateHz / 10}, Constant(0.1));
            const auto other = MakeFile({rateHz}, Constant(0.1));
            DriverRig rig("HarmonetOpenAL");
            if (isRendered) {
                rig.GetOptions().Set("OpenALRender", (GetTestFolder() / "host.wav").c_str());
            }
            SndDriver& driver = rig.GetDriver();
            SndChannel* channel = nullptr;
            bool hasEnded = false;
            rig.onEvent = [&](const DriverEvent&) {
                hasEnded = true;
                EXPECT_EQ(alcGetCurrentContext(), current);
            };
            FXEnvReverbSourceProperties properties = {-100, 0, 0, 0, 0, 0, 0, 0, 0};
            SoundCaps caps;
            const std::pair<const char*, std::function<void()>> calls[] = {
                {"Open", [&] { ASSERT_TRUE(rig.Open(rateHz, 4)); }},
                {"GetCaps", [&] { driver.GetCaps(caps); }},
                {"SetFXEnvReverb", [&] { driver.SetFXEnvReverb(&fxEnvReverbCave, 0, 0); }},
                {"CreateChannel", [&] { ASSERT_TRUE(channel = rig.Create(*file, ChanPositional)); }},
                {"FadeIn", [&] { channel->FadeIn(10); }}, {"SetGain", [&] { channel->SetGain(0.5f); }},
                {"SetCone", [&] { channel->SetCone(10, 20, 0.5f); }},
                {"SetMinMaxDistance", [&] { channel->SetMinMaxDistance(1, 10, true); }},
                {"SetPosition",
                    [&] {
                        channel->SetPosition({1, 2, 3});
                    }},
                {"SetDirection",
                    [&] {
                        channel->SetDirection({1, 2, 3});
                    }},
                {"SetFrequency", [&] { channel->SetFrequency(32000); }},
                {"SetProperties", [&] { channel->SetFXEnvReverbSourceProperties(&properties); }},
                {"Play", [&] { channel->Play(); }}, {"BeginUpdate", [&] { driver.BeginUpdate(40); }},
                {"SetListenerPosition",
                    [&] {
                        driver.SetListenerPosition({1, 2, 3});
                    }},
                {"SetListenerOrientation",
                    [&] {
                        driver.SetListenerOrientation({1, 0, 0}, {0, 1, 0});
                    }},
                {"SetRolloffFactor", [&] { driver.SetRolloffFactor(0.5f); }},
                {"SetMainGain", [&] { driver.SetMainGain(0.5f); }},
                {"EndUpdate", [&] { driver.EndUpdate(); }},
                {"GetRemainLength", [&] { channel->GetRemainLength(); }},
                {"FadeOut", [&] { channel->FadeOut(1); }},
                {"until the end",
                    [&] {
                        while (!hasEnded) {
                            rig.Step(40);
                        }
                    }},
                {"Stop", [&] { rig.Play(*other)->Stop(); }},
                {"ResetFXEnvReverb", [&] { driver.ResetFXEnvReverb(0); }},
                {"the end of the driver", [&] { rig.Close(); }}};
            for (const auto& [name, call] : calls) {
                SCOPED_TRACE(name);
                call();
                ASSERT_EQ(alcGetCurrentContext(), current);
                ASSERT_EQ(getThreadContext(), isThreadSet ? current : nullptr);
                ASSERT_FALSE(HasFatalFailure());
            }
        }
    }
    setThreadContext(nullptr);
    alcMakeContextCurrent(nullptr);
    ofProcess.ExpectUntouched();
    ofThread.ExpectUntouched();
}

/// The whole library with the OpenAL driver, started and stopped again and again in one process.
class OpenALCycles : public HostTest
{
protected:
    struct Used
    {
        std::size_t blocks;
        std::size_t bytes;
        std::ptrdiff_t threads;
        std::ptrdiff_t handles;
    };

    /// In bytes, of one cycle; nothing that OpenAL keeps of a sound or a device is as small as that. The C
    /// library keeps some for itself too.
    static constexpr std::size_t slackOfCycle = 96;
    static constexpr std::size_t slack = 4096;

    static std::ptrdiff_t CountEntries(const char* path)
    {
        return std::distance(
            std::filesystem::directory_iterator(path), std::filesystem::directory_iterator());
    }

    static Used GetUsed()
    {
        return {Alloc::LiveBlocks(), mallinfo2().uordblks, CountEntries("/proc/self/task"),
            CountEntries("/proc/self/fd")};
    }

    /// A short game, stopped while it plays.
    void RunCycle()
    {
        WaveFormatEx format{};
        format.formatTag = waveTagPcm;
        format.channels = 1;
        format.samplesPerSecond = rateHz;
        format.bitsPerSample = 16;
        static short pcm[rateHz / 10];
        ASSERT_TRUE(Start());
        Sound group;
        for (int i = 0; i < 4; ++i) {
            EXPECT_NE(group.Play2DSound(pcm, sizeof pcm, &format, Sound::StartLooping, 0, 0), 0);
        }
        StepTimes(2, 50);
        system.Done();
    }

    /// Goes through so many cycles several times over. What is left behind by each cycle shows each time;
    /// what a voice or the C library takes once, when it first comes to it, does not.
    template<class Run>
    void ExpectNoGrowth(int cycles, Run run)
    {
        constexpr int rounds = 4;
        std::size_t leastMore = std::numeric_limits<std::size_t>::max();
        run(cycles / rounds);
        const Used before = GetUsed();
        for (int round = 0; round < rounds; ++round) {
            const std::size_t bytesBefore = GetUsed().bytes;
            run(cycles / rounds);
            const std::size_t bytes = GetUsed().bytes;
            leastMore = std::min(leastMore, bytes > bytesBefore ? bytes - bytesBefore : 0);
        }
        const Used after = GetUsed();
        EXPECT_EQ(after.blocks, before.blocks);
        EXPECT_EQ(after.threads, before.threads);
        EXPECT_EQ(after.handles, before.handles);
        EXPECT_LE(leastMore, slack + slackOfCycle * static_cast<std::size_t>(cycles / rounds));
    }

    void ExpectNoGrowthOfGames(int cycles)
    {
        ExpectNoGrowth(std::getenv("HARMONET_NIGHTLY") ? 1000 : cycles, [this](int count) {
            for (int i = 0; i < count; ++i) {
                RunCycle();
            }
        });
    }
};

TEST_F(OpenALCycles, StartingAndStoppingALiveOutputLeavesNothingBehind)
{
    SetOption("Sound", "HarmonetOpenAL");
    ExpectNoGrowthOfGames(40);
}

TEST_F(OpenALCycles, StartingAndStoppingARenderedOutputLeavesNothingBehind)
{
    SetOption("Sound", "HarmonetOpenAL");
    SetOption("OpenALRender", (GetTestFolder() / "cycles.wav").c_str());
    ExpectNoGrowthOfGames(100);
}

TEST_F(OpenALCycles, StartingAndStoppingSoundsLeavesNothingBehind)
{
    std::vector<std::unique_ptr<FormulaFile>> files;
    for (int i = 0; i < 8; ++i) {
        files.push_back(MakeFile({100 * rateHz, rateHz, 1 + i % 2}, Constant(0.1)));
    }
    DriverRig rig("HarmonetOpenAL");
    ASSERT_TRUE(rig.Open(rateHz, 4));
    ExpectNoGrowth(1200, [&](int cycles) {
        for (int i = 0; i < cycles; ++i) {
            const unsigned int flags = (i % 3 ? ChanPositional : 0u) | (i % 5 ? 0u : ChanLooping);
            SndChannel* const channel = rig.Play(*files[static_cast<size_t>(i) % files.size()], flags);
            if (i % 7 == 0) {
                rig.Step(40);
            }
            channel->Stop();
        }
    });
}

} // namespace
} // namespace Quon
