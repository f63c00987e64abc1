#include "drivers/openal/Feeder.h"

#include "drivers/openal/Acoustics.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/SteadyTime.h"
#include "drivers/openal/VoicePool.h"

#include <algorithm>
#include <chrono>

namespace Quon
{

namespace
{

constexpr std::chrono::milliseconds roundTime{10};
constexpr int maxLastRounds = 15;
constexpr int minReadAheadMs = 80;
constexpr int maxReadAheadMs = 200;
constexpr std::int64_t tailMicroseconds = 60000;
constexpr int blocksAhead = 5;
static_assert(blocksAhead < Voice::bufferCount);

// The last block is queued when the first one has been played.
PumpTargets MakeTargets(int readAheadMs)
{
    const std::int64_t whole = std::int64_t{std::clamp(readAheadMs, minReadAheadMs, maxReadAheadMs)} * 1000;
    const std::int64_t block = whole / blocksAhead;
    return {whole - block, block, block, std::min(whole - block, tailMicroseconds)};
}

} // namespace

Feeder::Feeder(OutputDevice& outputDevice, VoicePool& voicePool, Acoustics& driverAcoustics, int readAheadMs)
    : device(outputDevice)
    , voices(voicePool)
    , acoustics(driverAcoustics)
    , keeper(outputDevice, voicePool, driverAcoustics)
    , targets(MakeTargets(readAheadMs))
{
}

Feeder::~Feeder()
{
    Stop();
}

void Feeder::Start(Channels allChannels)
{
    channels = allChannels;
    keeper.SetChannels(allChannels);
    thread = std::thread([this] { Run(); });
}

void Feeder::Stop()
{
    {
        const std::scoped_lock lock(mutex);
        isEnding = true;
    }
    wake.notify_one();
    if (thread.joinable()) {
        thread.join();
    }
}

void Feeder::Wake()
{
    {
        const std::scoped_lock lock(mutex);
        isWoken = true;
    }
    wake.notify_one();
}

void Feeder::Run()
{
    while (WaitForRound()) {
        keeper.NoticeLoss();
        Round();
        keeper.LookForDevice([this] { Round(); });
    }
    FinishFades();
}

// Before the output closes, the sounds stopped last fade out. The thread must not wait for a device that has
// stopped mixing.
void Feeder::FinishFades()
{
    const FeederScope scope(device);
    for (int round = 0; round < maxLastRounds && voices.IsAnyFading(); ++round) {
        std::this_thread::sleep_for(roundTime);
        voices.Tick(device.GetTime());
    }
}

// Returns false when the thread is to end. Observes the device's clock meanwhile.
bool Feeder::WaitForRound()
{
    using std::chrono::nanoseconds;
    const std::int64_t end = GetSteadyNanoseconds() + nanoseconds(roundTime).count();
    std::unique_lock lock(mutex);
    for (std::int64_t now = GetSteadyNanoseconds(); !isWoken && !isEnding && now < end;
         now = GetSteadyNanoseconds()) {
        const std::int64_t next = std::min(device.ObserveMixClock(), end);
        wake.wait_for(lock, nanoseconds(next - now), [this] { return isWoken || isEnding; });
    }
    isWoken = false;
    return !isEnding;
}

void Feeder::Round()
{
    const FeederScope scope(device);
    device.ObserveMixClock();
    acoustics.Tick(device.GetTime());
    for (const auto& channel : channels) {
        channel->Pump(targets, device.GetTime());
    }
    voices.Tick(device.GetTime());
}

} // namespace Quon
