#include "tests/support/RecordingChannel.h"

#include "harmonet/files/SndFile.h"

namespace Quon
{

RecordingChannel::RecordingChannel(int newNumber, unsigned int flags, SndFile* file)
    : name('c' + std::to_string(newNumber))
    , number(newNumber)
{
    sndFile = file;
    ChannelRecord& record = recording.channels[number];
    record.channel = this;
    record.flags = flags;
}

ChannelRecord* RecordingChannel::Find(const std::string& call) const
{
    const auto found = recording.channels.find(number);
    if (found != recording.channels.end()) {
        return &found->second;
    }
    recording.Require(false, name + ' ' + call + " when it is over");
    return nullptr;
}

ChannelRecord* RecordingChannel::Called(const std::string& call) const
{
    recording.Add(name + ' ' + call);
    return Find(call);
}

void RecordingChannel::Play()
{
    if (ChannelRecord* record = Called("Play")) {
        recording.Require(record->state == ChannelRecord::Made, name + " Play, twice");
        record->state = ChannelRecord::Playing;
    }
}

void RecordingChannel::Stop()
{
    Called("Stop");
    // The file must still be there, since a driver may be reading from it up to now.
    if (sndFile) {
        recording.Require(sndFile->GetCurrentSample() >= 0, name + " Stop, with a broken file");
    }
    recording.channels.erase(number);
}

void RecordingChannel::FadeIn(int ms)
{
    if (const ChannelRecord* record = Called("FadeIn " + std::to_string(ms))) {
        recording.Require(record->state == ChannelRecord::Made, name + " FadeIn, after Play");
    }
}

void RecordingChannel::FadeOut(int ms)
{
    if (ChannelRecord* record = Called("FadeOut " + std::to_string(ms))) {
        recording.Require(record->state == ChannelRecord::Playing, name + " FadeOut, and does not play");
        record->state = ChannelRecord::FadingOut;
    }
}

unsigned long RecordingChannel::GetRemainLength()
{
    const ChannelRecord* record = Find("GetRemainLength");
    if (record && record->remainMs) {
        return *record->remainMs;
    }
    return sndFile ? sndFile->GetRemainLength() : 0;
}

void RecordingChannel::SetGain(float gain)
{
    recording.Require(gain >= 0.0F && gain <= 1.0F, name + " SetGain, out of range");
    if (ChannelRecord* record = Called("SetGain " + ToText(gain))) {
        record->gain = gain;
    }
}

void RecordingChannel::SetLowPass(float gainHF)
{
    if (ChannelRecord* record = Called("SetLowPass " + ToText(gainHF))) {
        record->lowPass = gainHF;
    }
}

void RecordingChannel::SetPitch(float factor)
{
    if (ChannelRecord* record = Called("SetPitch " + ToText(factor))) {
        record->pitch = factor;
    }
}

void RecordingChannel::SetPosition(const Vector3& position)
{
    recording.Require(IsFinite(position), name + " SetPosition, not finite");
    if (ChannelRecord* record = Called("SetPosition " + ToText(position))) {
        record->position = position;
    }
}

void RecordingChannel::SetStartTime(std::int64_t gameMicroseconds, std::int64_t)
{
    if (ChannelRecord* record = Find("SetStartTime")) {
        record->startTime = gameMicroseconds;
    }
}

void RecordingChannel::SetMinMaxDistance(float minDistance, float maxDistance, bool cutout)
{
    Called("SetMinMaxDistance " + ToText(minDistance) + ' ' + ToText(maxDistance) + ' ' +
        std::to_string(cutout));
}

void RecordingChannel::SetCone(float innerAngle, float outerAngle, float outerGain)
{
    Called("SetCone " + ToText(innerAngle) + ' ' + ToText(outerAngle) + ' ' + ToText(outerGain));
}

void RecordingChannel::SetDirection(const Vector3& direction)
{
    recording.Require(IsFinite(direction), name + " SetDirection, not finite");
    Called("SetDirection " + ToText(direction));
}

bool RecordingChannel::SetFrequency(unsigned long hz)
{
    ChannelRecord* record = Called("SetFrequency " + std::to_string(hz));
    if (!record || recording.refuseFrequency) {
        return false;
    }
    if (recording.reportsFrequency) {
        record->frequencyHz = hz;
    }
    return true;
}

unsigned long RecordingChannel::GetFrequency()
{
    const ChannelRecord* record = Find("GetFrequency");
    return record ? record->frequencyHz : 0;
}

bool RecordingChannel::SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* properties)
{
    Called("SetFXEnvReverbSourceProperties " + std::to_string(properties->direct));
    return !recording.refuseFX;
}

} // namespace Quon
