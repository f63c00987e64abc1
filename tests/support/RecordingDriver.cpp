#include "tests/support/RecordingDriver.h"

#include "harmonet/definitions/SndFXList.h"
#include "harmonet/files/SndFile.h"

#include <algorithm>
#include <utility>

namespace Quon
{

namespace
{

constexpr unsigned long leastUpdateMs = 40;

std::string Describe(const SndFile& file)
{
    const PString name = file.GetFileName();
    const std::string text(name.IsEmpty() ? "memory" : name.GetView());
    return text + '@' + std::to_string(file.GetCurrentSample());
}

std::string Describe(const SndFXList& fx)
{
    std::string text = "fx";
    const unsigned char* place = fx.GetEffectsArr();
    for (unsigned long left = fx.GetNumEffects(); left > 0; --left) {
        std::uint32_t head[2];
        std::memcpy(head, place, sizeof head);
        text += ' ' + std::to_string(head[0]);
        place += sizeof head + head[1];
    }
    return text;
}

// What they do may set further ones, for the next time.
void DoOnce(std::vector<std::function<void()>>& actions)
{
    for (const std::function<void()>& action : std::exchange(actions, {})) {
        action();
    }
}

} // namespace

RecordingDriver::RecordingDriver()
{
    recording.driver = this;
}

RecordingDriver::~RecordingDriver()
{
    recording.Add("Delete");
    recording.Require(recording.channels.empty(), "the driver deleted with channels in use");
    recording.channels.clear();
    recording.driver = nullptr;
}

bool RecordingDriver::Open(OS*, const SoundFormat* format, int streamLength, bool driverFlag)
{
    const int numbers[] = {format->GetBytesPerSample(), format->GetSampleFrequency(), format->GetChannels(),
        format->GetSoundSamples(), streamLength, driverFlag};
    std::string line = "Open";
    for (int number : numbers) {
        line += ' ' + std::to_string(number);
    }
    recording.Add(line);
    isOpen = !recording.refuseOpen;
    return isOpen;
}

void RecordingDriver::SetCallback(SndDriverCallback newCallback, void* newUser)
{
    recording.Add("SetCallback");
    recording.Require(isOpen && !callback, "SetCallback out of turn");
    callback = newCallback;
    user = newUser;
}

void RecordingDriver::SetMaxChannels(int count)
{
    recording.Add("SetMaxChannels " + std::to_string(count));
    recording.maxChannels = count;
}

void RecordingDriver::BeginUpdate(unsigned long elapsedMs)
{
    recording.Add("BeginUpdate " + std::to_string(elapsedMs));
    recording.Require(!isUpdating && elapsedMs >= leastUpdateMs, "BeginUpdate out of turn");
    isUpdating = true;
    DropUnused();
    DoOnce(recording.atBegin);
}

// Using a channel that had ended at the last update is a use after free.
void RecordingDriver::DropUnused()
{
    std::erase_if(channels, [](const std::unique_ptr<RecordingChannel>& channel) {
        return std::none_of(recording.channels.begin(), recording.channels.end(),
            [&](const auto& entry) { return entry.second.channel == channel.get(); });
    });
}

void RecordingDriver::EndUpdate()
{
    recording.Add("EndUpdate");
    recording.Require(isUpdating, "EndUpdate out of turn");
    DoOnce(recording.atEnd);
    isUpdating = false;
}

bool RecordingDriver::GetCaps(SoundCaps& caps)
{
    caps.SetFlags(recording.caps);
    return true;
}

void RecordingDriver::SetMainGain(float gain)
{
    recording.Add("SetMainGain " + ToText(gain));
    recording.Require(gain >= 0.0F && gain <= 1.0F, "SetMainGain, out of range");
    mainGain = gain;
}

void RecordingDriver::SetListenerPosition(const Vector3& position)
{
    recording.Add("SetListenerPosition " + ToText(position));
    recording.Require(IsFinite(position), "SetListenerPosition, not finite");
}

void RecordingDriver::SetListenerOrientation(const Vector3& front, const Vector3& top)
{
    recording.Add("SetListenerOrientation " + ToText(front) + ", " + ToText(top));
    recording.Require(IsFinite(front) && IsFinite(top), "SetListenerOrientation, not finite");
}

void RecordingDriver::SetRolloffFactor(float factor)
{
    recording.Add("SetRolloffFactor " + ToText(factor));
    rolloffFactor = factor;
}

bool RecordingDriver::SetFXEnvReverb(const FXEnvReverb* record, long quality, unsigned int argument)
{
    recording.Add("SetFXEnvReverb " + std::to_string(record->roomHF) + ' ' + std::to_string(quality) + ' ' +
        std::to_string(argument));
    return !recording.refuseFX;
}

void RecordingDriver::ResetFXEnvReverb(unsigned int argument)
{
    recording.Add("ResetFXEnvReverb " + std::to_string(argument));
}

SndChannel* RecordingDriver::CreateChannel(unsigned int flags, SndFile* file, SndFXList fx)
{
    const std::string what = std::to_string(flags) + ' ' + Describe(*file) + ' ' + Describe(fx);
    if (static_cast<int>(recording.channels.size()) >= recording.channelLimit) {
        recording.Add("CreateChannel refused " + what);
        return nullptr;
    }
    const int number = ++lastNumber;
    recording.Add("CreateChannel c" + std::to_string(number) + ' ' + what);
    channels.push_back(std::make_unique<RecordingChannel>(number, flags, file));
    return channels.back().get();
}

void RecordingDriver::Send(int event, void* data)
{
    recording.Require(isUpdating, "an event outside an update, by the test");
    callback(event, data, user);
}

} // namespace Quon
