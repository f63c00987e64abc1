#include "drivers/openal/DeviceKeeper.h"

#include "drivers/openal/Acoustics.h"
#include "drivers/openal/OpenALChannel.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/SteadyTime.h"
#include "drivers/openal/VoicePool.h"

#include <mutex>

namespace Quon
{

namespace
{
constexpr std::int64_t shortPause = nanosecondsPerSecond;
constexpr std::int64_t longPause = 5 * nanosecondsPerSecond;
constexpr int triesAfterShortPauses = 30;
} // namespace

DeviceKeeper::DeviceKeeper(OutputDevice& outputDevice, VoicePool& voicePool, Acoustics& driverAcoustics)
    : device(outputDevice)
    , voices(voicePool)
    , acoustics(driverAcoustics)
{
}

void DeviceKeeper::NoticeLoss()
{
    if (!device.HasSession() || device.IsConnected()) {
        return;
    }
    std::unique_ptr<AlSession> lost; // Closed at the end, without holding a lock.
    const ContextScope scope(device);
    voices.GoSilent();
    acoustics.Destroy();
    TellChannels();
    lost = device.Exchange(nullptr);
    triesInVain = 0;
    nextTry = 0;
}

void DeviceKeeper::LookForDevice(const std::function<void()>& catchUp)
{
    if (device.HasSession() || GetSteadyNanoseconds() < nextTry) {
        return;
    }
    std::unique_ptr<AlSession> fresh = device.MakeLiveSession();
    nextTry = GetSteadyNanoseconds() + (triesInVain < triesAfterShortPauses ? shortPause : longPause);
    if (!fresh) {
        ++triesInVain;
        return;
    }
    catchUp();
    const std::scoped_lock lock(device.GetMutex());
    device.Exchange(std::move(fresh));
    const ContextScope scope(device);
    device.ApplyListener();
    acoustics.Create();
    voices.Restore();
    TellChannels();
}

void DeviceKeeper::TellChannels()
{
    for (const auto& channel : channels) {
        channel->OnDeviceChanged();
    }
}

} // namespace Quon
