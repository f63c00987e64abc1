#pragma once

#include "harmonet/definitions/SndFXList.h"
#include "harmonet/engine/OS.h"
#include "harmonet/output/SndChannel.h"
#include "harmonet/output/SndDriver.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Quon
{

class SndFile;

/// An event as the driver has reported it.
struct DriverEvent
{
    int kind;
    SndChannel* channel;
    SndFile* oldFile;
    SndFile* newFile;
    long atMs; ///< Of the time that has been stepped through.

    bool operator==(const DriverEvent&) const = default;
};

/// A driver, loaded by name as the library does it, and a host for it: opens it, turns its clock by hand,
/// takes its events, and does with each event's files and channel what the library would do. The test owns
/// it.
class DriverRig
{
public:
    /// `name` is without the platform's suffix.
    explicit DriverRig(const std::string& name);
    /// The same for a driver that the test has made itself.
    explicit DriverRig(std::unique_ptr<SndDriver> newDriver);
    ~DriverRig();
    DriverRig(const DriverRig&) = delete;
    DriverRig& operator=(const DriverRig&) = delete;

    bool Open(int rateHz, int maxChannels, int streamLength = 500);
    /// Deletes the driver, whatever plays.
    void Close();

    SndDriver& GetDriver() { return *driver; }
    Options& GetOptions() { return *os.GetOptions(); }

    /// Null if the driver refuses.
    SndChannel* Create(SndFile& file, unsigned int flags = 0, const SndFXList& fx = {});
    /// A channel that plays. The driver must not refuse.
    SndChannel* Play(SndFile& file, unsigned int flags = 0, const SndFXList& fx = {});
    /// Appends `next` to the queue that begins with `head`, as it is done to a running channel.
    void Append(SndChannel& channel, SndFile& head, SndFile& next);

    /// One full update; `settings` is done between its begin and its end.
    void Step(unsigned long ms, const std::function<void()>& settings = nullptr);
    void StepTimes(int times, unsigned long ms);

    /// What has been reported since the last call.
    std::vector<DriverEvent> TakeEvents();
    /// The file that the last channel to end had then.
    SndFile* GetFileAtEnd() const { return fileAtEnd; }
    /// Done inside each event.
    std::function<void(const DriverEvent&)> onEvent;

private:
    static int HandleEvent(int event, void* data, void* user);

    OS os;
    std::unique_ptr<DynamicLibrary> library;
    std::unique_ptr<SndDriver> driver;
    std::vector<DriverEvent> events;
    SndFile* fileAtEnd = nullptr;
    long timeMs = 0;
};

} // namespace Quon
