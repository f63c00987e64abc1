#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/instances/Sound.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/support/Environment.h"
#include "tests/support/HostTest.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <malloc.h>
#include <tuple>

namespace Quon
{
namespace
{

constexpr int rateHz = 44100;

// An output of OpenAL that takes sound at the speed of a sound card and discards it.
const bool isQuietOutput = SetEnvironment("ALSOFT_DRIVERS", "null");

template<class Function>
Function GetFunction(const char* name)
{
    return reinterpret_cast<Function>(alcGetProcAddress(nullptr, name));
}

const auto setThreadContext = GetFunction<PFNALCSETTHREADCONTEXTPROC>("alcSetThreadContext");
const auto getThreadContext = GetFunction<PFNALCGETTHREADCONTEXTPROC>("alcGetThreadContext");

/// The host's own use of OpenAL: a device with a context, whose listener has a gain.
class HostsOwn
{
public:
    HostsOwn()
    {
        device = GetFunction<LPALCLOOPBACKOPENDEVICESOFT>("alcLoopbackOpenDeviceSOFT")(nullptr);
        const ALCint attributes[] = {ALC_FORMAT_CHANNELS_SOFT, ALC_STEREO_SOFT, ALC_FORMAT_TYPE_SOFT,
            ALC_FLOAT_SOFT, ALC_FREQUENCY, rateHz, 0};
        context = alcCreateContext(device, attributes);
        setThreadContext(context);
        alListenerf(AL_GAIN, gain);
        setThreadContext(nullptr);
    }
    ~HostsOwn()
    {
        alcDestroyContext(context);
        alcCloseDevice(device);
    }

    ALCcontext* GetContext() const { return context; }

    void ExpectUntouched() const
    {
        setThreadContext(context);
        ALfloat value = 0.0F;
        alGetListenerf(AL_GAIN, &value);
        EXPECT_EQ(value, gain);
        ALuint source = 0;
        alGenSources(1, &source);
        EXPECT_EQ(source, 1U) << "somebody has made sources here";
        alDeleteSources(1, &source);
        EXPECT_EQ(alGetError(), AL_NO_ERROR);
        setThreadContext(nullptr);
    }

private:
    static constexpr float gain = 0.75F;
    ALCdevice* device;
    ALCcontext* context;
};

/// Whether the output is rendered, and whether the thread has a context of its own beside that of the
/// process.
void ExpectLeftAlone(bool isRendered, bool isThreadSet)
{
    const HostsOwn ofProcess;
    const HostsOwn ofThread;
    alcMakeContextCurrent(ofProcess.GetContext());
    ALCcontext* const threads = isThreadSet ? ofThread.GetContext() : nullptr;
    setThreadContext(threads);
    ALCcontext* const current = threads ? threads : ofProcess.GetContext();

    DriverRig rig("HarmonetOpenAL");
    FormulaFile& file = rig.Make({rateHz / 10}, Constant(0.1));
    FormulaFile& other = rig.Make({rateHz}, Constant(0.1));
    if (isRendered) {
        rig.GetOptions().Set("OpenALRender", (GetTestFolder() / "host.wav").string().c_str());
    }
    SndDriver& driver = rig.GetDriver();
    SndChannel* channel = nullptr;
    bool hasEnded = false;
    rig.onEvent = [&](const DriverEvent&) {
        hasEnded = true;
        EXPECT_EQ(alcGetCurrentContext(), current);
    };
    const FXEnvReverbSourceProperties properties = {-100, 0, 0, 0, 0, 0, 0, 0, 0};
    const Vector3 place = {1, 2, 3};
    const Vector3 up = {0, 1, 0};
    SoundCaps caps;
    const std::function<void()> calls[] = {[&] { ASSERT_TRUE(rig.Open(rateHz, 4)); },
        [&] { driver.GetCaps(caps); }, [&] { driver.SetFXEnvReverb(&fxEnvReverbCave, 0, 0); },
        [&] { ASSERT_TRUE(channel = rig.Create(file, ChanPositional)); }, [&] { channel->FadeIn(10); },
        [&] { channel->SetGain(0.5F); }, [&] { channel->SetCone(10, 20, 0.5F); },
        [&] { channel->SetMinMaxDistance(1, 10, true); }, [&] { channel->SetPosition(place); },
        [&] { channel->SetDirection(place); }, [&] { channel->SetFrequency(32000); },
        [&] { channel->SetLowPass(0.5F); }, [&] { channel->SetPitch(1.5F); },
        [&] { channel->SetFXEnvReverbSourceProperties(&properties); }, [&] { channel->Play(); },
        [&] { driver.BeginUpdate(40); }, [&] { driver.SetListenerPosition(place); },
        [&] { driver.SetListenerOrientation(place, up); }, [&] { driver.SetRolloffFactor(0.5F); },
        [&] { driver.SetMainGain(0.5F); }, [&] { driver.EndUpdate(); }, [&] { channel->GetRemainLength(); },
        [&] { channel->FadeOut(1); }, [&] { EXPECT_TRUE(rig.StepUntil([&] { return hasEnded; })); },
        [&] { rig.Play(other)->Stop(); }, [&] { driver.ResetFXEnvReverb(0); }, [&] { rig.Close(); }};
    for (const auto& call : calls) {
        SCOPED_TRACE("call " + std::to_string(&call - calls));
        call();
        ASSERT_EQ(alcGetCurrentContext(), current);
        ASSERT_EQ(getThreadContext(), threads);
        ASSERT_FALSE(testing::Test::HasFatalFailure());
    }
    setThreadContext(nullptr);
    alcMakeContextCurrent(nullptr);
    ofProcess.ExpectUntouched();
    ofThread.ExpectUntouched();
}

TEST(OpenALHost, NoCallChangesTheHostsContexts)
{
    ASSERT_TRUE(isQuietOutput);
    for (const bool isRendered : {false, true}) {
        for (const bool isThreadSet : {false, true}) {
            SCOPED_TRACE((isRendered ? "rendered, " : "live, ") + std::to_string(isThreadSet));
            ExpectLeftAlone(isRendered, isThreadSet);
        }
    }
}

// Leaks are counted by what Linux reports.
#if defined(__linux__)

std::ptrdiff_t CountEntries(const char* path)
{
    return std::distance(std::filesystem::directory_iterator(path), std::filesystem::directory_iterator());
}

/// Goes through so many cycles several times over. A leak of each cycle shows each time; what a
/// voice or the C library takes once, when it first comes to it, does not.
void ExpectNoGrowth(int cycles, const std::function<void(int cycle)>& runCycle)
{
    // In bytes, of one cycle; nothing that OpenAL keeps of a sound or a device is as small as that. The C
    // library keeps some for itself too.
    constexpr int slackOfCycle = 96;
    constexpr int slack = 4096;
    constexpr int rounds = 4;
    cycles = std::max(cycles, std::getenv("HARMONET_NIGHTLY") ? 1000 : 0) / rounds;
    const auto countKept = [] {
        return std::tuple(
            Alloc::LiveBlocks(), CountEntries("/proc/self/task"), CountEntries("/proc/self/fd"));
    };
    auto keptBefore = countKept();
    auto leastMore = std::numeric_limits<std::ptrdiff_t>::max();
    for (int round = 0; round <= rounds; ++round) {
        const std::size_t bytesBefore = mallinfo2().uordblks;
        for (int i = 0; i < cycles; ++i) {
            runCycle(i);
        }
        leastMore = std::min(leastMore, static_cast<std::ptrdiff_t>(mallinfo2().uordblks - bytesBefore));
        if (round == 0) {
            keptBefore = countKept();
        }
    }
    // A thread that has ended may be counted for a moment longer.
    const auto keptAfter = countKept();
    EXPECT_EQ(std::get<0>(keptAfter), std::get<0>(keptBefore));
    EXPECT_LE(std::get<1>(keptAfter), std::get<1>(keptBefore)) << "threads";
    EXPECT_LE(std::get<2>(keptAfter), std::get<2>(keptBefore)) << "open files";
    EXPECT_LE(leastMore, slack + slackOfCycle * cycles);
}

/// The whole library with the OpenAL driver.
using OpenALCycles = HostTest;

TEST_F(OpenALCycles, StartingAndStoppingAnOutputDoesNotLeak)
{
    SetOption("Sound", "HarmonetOpenAL");
    MemoryBlock block({rateHz / 10, rateHz});
    for (const bool isRendered : {false, true}) {
        if (isRendered) {
            SetOption("OpenALRender", (GetTestFolder() / "cycles.wav").string().c_str());
        }
        ExpectNoGrowth(isRendered ? 100 : 40, [&](int) {
            ASSERT_TRUE(Start());
            Sound group;
            for (int i = 0; i < 4; ++i) {
                EXPECT_NE(group.Play2DSound(
                              block.GetData(), block.GetSize(), &block.format, Sound::StartLooping, 0, 0),
                    0);
            }
            StepTimes(2, 50);
            system.Done();
        });
    }
}

TEST_F(OpenALCycles, StartingAndStoppingSoundsDoesNotLeak)
{
    DriverRig rig("HarmonetOpenAL");
    ASSERT_TRUE(rig.Open(rateHz, 4));
    FormulaFile& mono = rig.Make({100 * rateHz}, Constant(0.1));
    FormulaFile& stereo = rig.Make({100 * rateHz, rateHz, 2}, Constant(0.1));
    ExpectNoGrowth(1200, [&](int i) {
        const unsigned int flags = (i % 3 ? ChanPositional : 0U) | (i % 5 ? 0U : ChanLooping);
        SndChannel* const channel = rig.Play(i % 2 ? stereo : mono, flags);
        if (i % 7 == 0) {
            rig.Step(40);
        }
        channel->Stop();
    });
}

#endif

} // namespace
} // namespace Quon
