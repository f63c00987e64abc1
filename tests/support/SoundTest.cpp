#include "tests/support/SoundTest.h"

#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/SndKernel.h"

namespace Quon
{

SoundTest::SoundTest()
{
    EXPECT_TRUE(Start());
    microphone = std::make_unique<Microphone>();
    microphone->Activate();
    names = std::make_unique<SoundNames>();
    observer = std::make_unique<LoggingObserver>(*names);
    group = std::make_unique<Sound>();
    group->AddObserver(observer.get());
    TakeLog();
}

// The test's reaction refers to objects that have been destroyed.
SoundTest::~SoundTest()
{
    if (observer) {
        observer->react = nullptr;
    }
}

int SoundTest::Play(const PString& file, int flags, int priority, int delay)
{
    return group->Play2DSound(file, nullptr, flags, priority, delay);
}

int SoundTest::Play3D(const PString& file, float x)
{
    Sound::Settings settings;
    settings.setDistance = true;
    settings.minDistance = 1.0F;
    settings.maxDistance = 100.0F;
    settings.cutout = true;
    return group->Play3DSound(Vector3{x, 0.0F, 0.0F}, file, nullptr, 0, 0, settings, 0);
}

MemoryBlock& SoundTest::NewBlock(const std::string& name, const PcmForm& form)
{
    blocks.push_back(std::make_unique<MemoryBlock>(form));
    names->SetName(blocks.back()->GetData(), name);
    return *blocks.back();
}

Ids SoundTest::GetIds(ListID id)
{
    Ids ids;
    GetRunningKernel()->GetList(id).ForEach([&](const SndBase& sound) { ids.push_back(sound.GetSoundID()); });
    EXPECT_EQ(static_cast<int>(ids.size()), GetRunningKernel()->GetList(id).GetCount());
    return ids;
}

Ids SoundTest::Playing() const
{
    return GetIds(ListID::Playing);
}

Ids SoundTest::Emulated() const
{
    return GetIds(ListID::Emulated);
}

Ids SoundTest::Waiting() const
{
    return GetIds(ListID::Waiting);
}

SndBase* SoundTest::Find(int id) const
{
    return GetRunningKernel() ? GetRunningKernel()->FindSound(id) : nullptr;
}

int SoundTest::ChannelOf(int id) const
{
    const SndBase* sound = Find(id);
    for (const auto& [number, record] : recording.channels) {
        if (sound && sound->GetSndChannel() == record.channel) {
            return number;
        }
    }
    return 0;
}

void SoundTest::StepWithEnd(int channel)
{
    recording.atEnd.push_back([this, channel] { recording.End(channel); });
    Step(40);
}

void SoundTest::StepWithNextFile(int channel)
{
    recording.atEnd.push_back([this, channel] { recording.StepFile(channel); });
    Step(40);
}

} // namespace Quon
