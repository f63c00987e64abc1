#pragma once

#include "harmonet/definitions/SndFXList.h"
#include "harmonet/engine/DynamicLibrary.h"
#include "harmonet/engine/OS.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/output/SndChannel.h"
#include "harmonet/output/SndDriver.h"
#include "tests/drivers/FormulaFile.h"

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Quon
{

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

/// A driver, loaded by name as in the library, and its host: opens it, advances its clock manually, receives
/// its events, and handles the files and channel of each event as the library would. Owned by the test.
class DriverRig
{
public:
    /// `name` is without the platform's suffix.
    explicit DriverRig(const std::string& name)
        : library(os.CreateDynamicLibrary())
    {
        void* create = nullptr;
        if (!library->Open((name + dynamicLibrarySuffix).c_str()) ||
            !library->GetSymbol(&create, "CreateSoundDriver")) {
            throw std::runtime_error("cannot load " + name);
        }
        driver.reset(reinterpret_cast<CreateSoundDriverFunction>(create)());
    }
    /// The same for a driver that the test has made itself.
    explicit DriverRig(std::unique_ptr<SndDriver> newDriver)
        : driver(std::move(newDriver))
    {
    }
    virtual ~DriverRig() = default;
    DriverRig(const DriverRig&) = delete;
    DriverRig& operator=(const DriverRig&) = delete;

    bool Open(int rateHz, int maxChannels, int streamLength = 500)
    {
        SoundFormat format;
        format.SetFormat(2, rateHz, 0, 2);
        if (!driver->Open(&os, &format, streamLength, false)) {
            return false;
        }
        driver->SetCallback(HandleEvent, this);
        driver->SetMaxChannels(maxChannels);
        return true;
    }
    /// Deletes the driver, even while sounds play.
    void Close() { driver.reset(); }

    SndDriver& GetDriver() { return *driver; }
    Options& GetOptions() { return *os.GetOptions(); }

    /// A sound that lives as long as the rig, and longer than the driver.
    FormulaFile& Make(const FormulaFile::Form& form, FormulaFile::Formula formula)
    {
        files.push_back(MakeFile(form, std::move(formula)));
        return *files.back();
    }

    /// A queue of files of these lengths, in which the formula continues from file to file.
    std::vector<FormulaFile*> MakeQueue(
        const std::vector<int>& lengths, FormulaFile::Form form, const FormulaFile::Formula& formula)
    {
        std::vector<FormulaFile*> queue;
        int offset = 0;
        for (const int length : lengths) {
            form.sampleFrames = length;
            queue.push_back(&Make(form, [=](int frame, int side) { return formula(frame + offset, side); }));
            offset += length;
            if (queue.size() > 1) {
                queue.front()->Add(queue.back());
            }
        }
        return queue;
    }

    /// Null if the driver refuses.
    SndChannel* Create(SndFile& file, unsigned int flags = 0, const SndFXList& fx = {})
    {
        return driver->CreateChannel(flags, &file, fx);
    }
    /// A channel that plays. The driver must not refuse.
    SndChannel* Play(SndFile& file, unsigned int flags = 0, const SndFXList& fx = {})
    {
        SndChannel* const channel = Create(file, flags, fx);
        if (!channel) {
            throw std::runtime_error("the driver has no channel");
        }
        channel->Play();
        return channel;
    }
    /// Appends `next` to the queue that begins with `head`, as it is done to a running channel.
    void Append(SndChannel& channel, SndFile& head, SndFile& next)
    {
        channel.Lock();
        head.Add(&next);
        channel.Unlock();
    }

    /// One full update; `settings` is done between its begin and its end.
    void Step(unsigned long ms, const std::function<void()>& settings = nullptr)
    {
        timeMs += static_cast<long>(ms);
        driver->BeginUpdate(ms);
        if (settings) {
            settings();
        }
        driver->EndUpdate();
    }
    void StepTimes(int times, unsigned long ms)
    {
        for (int i = 0; i < times; ++i) {
            Step(ms);
        }
    }
    /// Updates without waiting until the condition is true. False after two minutes.
    bool StepUntil(const std::function<bool()>& condition)
    {
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > giveUp) {
                return false;
            }
            Step(40);
            std::this_thread::yield();
        }
        return true;
    }

    /// What has been reported since the last call.
    std::vector<DriverEvent> TakeEvents() { return std::exchange(events, {}); }
    /// The file that the last channel to end had then.
    SndFile* GetFileAtEnd() const { return fileAtEnd; }
    /// Done inside each event.
    std::function<void(const DriverEvent&)> onEvent;

private:
    static int HandleEvent(int kind, void* data, void* user)
    {
        auto& rig = *static_cast<DriverRig*>(user);
        DriverEvent event{kind, nullptr, nullptr, nullptr, rig.timeMs};
        if (kind == SndFileChanged) {
            const auto& change = *static_cast<const SndFileChange*>(data);
            event = {kind, change.channel, change.oldFile, change.newFile, rig.timeMs};
            change.oldFile->ClearQueue();
        }
        else {
            event.channel = static_cast<SndChannel*>(data);
            rig.fileAtEnd = event.channel->GetSndFile();
            event.channel->SetSndFile(nullptr);
        }
        rig.events.push_back(event);
        if (rig.onEvent) {
            rig.onEvent(event);
        }
        return 0;
    }

    OS os;
    std::vector<std::unique_ptr<FormulaFile>> files;
    std::unique_ptr<DynamicLibrary> library;
    std::unique_ptr<SndDriver> driver;
    std::vector<DriverEvent> events;
    SndFile* fileAtEnd = nullptr;
    long timeMs = 0;
};

} // namespace Quon
