#pragma once

#include "harmonet/engine/Vector.h"
#include "harmonet/output/SndDriver.h"

#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// What the recording driver and a test have in common: the log of all calls on the driver and its channels,
/// what the driver refuses, and what it does on request.
///
/// The recording driver makes no sound and does nothing by itself. It is in its own library, which
/// exports the one object of this class as "GetRecording"; the object outlives the drivers and lives until
/// that library is unloaded. One thread.

namespace Quon
{

class SndFile;

using Lines = std::vector<std::string>;

/// A channel as the recording driver knows it.
struct ChannelRecord
{
    enum State
    {
        Made,
        Playing,
        FadingOut
    };

    SndChannel* channel = nullptr;
    unsigned int flags = 0;
    State state = Made;
    float gain = 1.0F;
    float lowPass = 1.0F;
    float pitch = 1.0F;
    Vector3 position;
    unsigned long frequencyHz = 0; ///< The result of GetFrequency(); 0 until a rate is set and reported.
    std::optional<std::int64_t> startTime; ///< In game time, as set by SetStartTime().
    std::optional<unsigned long> remainMs; ///< What GetRemainLength() answers in place of the file's rest.
};

class Recording
{
public:
    // The log. Each call is one line, "BeginUpdate 40", or "c2 SetGain 0.5" for the second channel. Questions
    // (GetGain, GetRemainLength and so on) are not logged. Observers may add lines of their own.

    Lines lines;
    /// Calls that break the contract with a driver, checked in every test.
    Lines violations;

    // The driver's refusals and answers, until Reset().

    bool giveNoDriver = false;
    bool refuseOpen = false;
    /// Channels at once beyond which CreateChannel() gives null.
    int channelLimit = std::numeric_limits<int>::max();
    bool refuseFrequency = false;
    bool reportsFrequency = false; ///< GetFrequency() answers with the rate that was set last.
    bool refuseFX = false; ///< For the room and for source properties.
    bool hasLiveFX = false; ///< The getters of the effects give records full of `liveFXByte`.
    static constexpr int liveFXByte = 0x3F;
    unsigned int caps = 0;

    /// Done once, inside the next BeginUpdate() or EndUpdate(): the places for events.
    std::vector<std::function<void()>> atBegin;
    std::vector<std::function<void()>> atEnd;

    // The driver's channels by their numbers, which count from 1. Channels that have ended are removed.

    std::map<int, ChannelRecord> channels;
    int maxChannels = 0; ///< As set by SetMaxChannels().

    // What the driver can be made to do. Events belong inside an update: see above.

    /// Reads up to so many sample frames from the channel's file, and from its start again if the channel
    /// loops; returns how many there were. Stays on the file.
    virtual int Read(int channel, int sampleFrames) = 0;
    /// Continues with the next file of the channel's queue, as a driver's own thread would, and reports it.
    virtual void StepFile(int channel) = 0;
    /// Reports that the channel has ended, and forgets it.
    virtual void End(int channel) = 0;
    /// Forgets the log and all that was set.
    virtual void Reset() = 0;

protected:
    ~Recording() = default;
};

using GetRecordingFunction = Recording* (*)();

/// The shortest text that reads back as the same number; "0" also for the negative zero.
std::string ToText(float value);
std::string ToText(const Vector3& vector);

} // namespace Quon
