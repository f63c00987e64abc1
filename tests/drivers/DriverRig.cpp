#include "tests/drivers/DriverRig.h"

#include "harmonet/engine/DynamicLibrary.h"
#include "harmonet/files/SndFile.h"

#include <stdexcept>
#include <utility>

namespace Quon
{

DriverRig::DriverRig(const std::string& name)
    : library(os.CreateDynamicLibrary())
{
    void* create = nullptr;
    if (!library->Open((name + dynamicLibrarySuffix).c_str()) ||
        !library->GetSymbol(&create, "CreateSoundDriver")) {
        throw std::runtime_error("cannot load " + name);
    }
    driver.reset(reinterpret_cast<CreateSoundDriverFunction>(create)());
}

DriverRig::DriverRig(std::unique_ptr<SndDriver> newDriver)
    : driver(std::move(newDriver))
{
}

DriverRig::~DriverRig()
{
    Close();
}

bool DriverRig::Open(int rateHz, int maxChannels, int streamLength)
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

void DriverRig::Close()
{
    driver.reset();
}

SndChannel* DriverRig::Create(SndFile& file, unsigned int flags, const SndFXList& fx)
{
    return driver->CreateChannel(flags, &file, fx);
}

SndChannel* DriverRig::Play(SndFile& file, unsigned int flags, const SndFXList& fx)
{
    SndChannel* const channel = Create(file, flags, fx);
    if (!channel) {
        throw std::runtime_error("the driver has no channel");
    }
    channel->Play();
    return channel;
}

void DriverRig::Append(SndChannel& channel, SndFile& head, SndFile& next)
{
    channel.Lock();
    head.Add(&next);
    channel.Unlock();
}

void DriverRig::Step(unsigned long ms, const std::function<void()>& settings)
{
    timeMs += static_cast<long>(ms);
    driver->BeginUpdate(ms);
    if (settings) {
        settings();
    }
    driver->EndUpdate();
}

void DriverRig::StepTimes(int times, unsigned long ms)
{
    for (int i = 0; i < times; ++i) {
        Step(ms);
    }
}

std::vector<DriverEvent> DriverRig::TakeEvents()
{
    return std::exchange(events, {});
}

int DriverRig::HandleEvent(int event, void* data, void* user)
{
    auto& rig = *static_cast<DriverRig*>(user);
    DriverEvent seen{event, nullptr, nullptr, nullptr, rig.timeMs};
    if (event == SndFileChanged) {
        const auto& change = *static_cast<const SndFileChange*>(data);
        seen = {event, change.channel, change.oldFile, change.newFile, rig.timeMs};
        change.oldFile->ClearQueue();
    }
    else {
        seen.channel = static_cast<SndChannel*>(data);
        rig.fileAtEnd = seen.channel->GetSndFile();
        seen.channel->SetSndFile(nullptr);
    }
    rig.events.push_back(seen);
    if (rig.onEvent) {
        rig.onEvent(seen);
    }
    return 0;
}

} // namespace Quon
