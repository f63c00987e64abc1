#include "harmonet/kernel/SoundSystem.h"

#include "harmonet/definitions/SoundResource.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/kernel/HarmonetStrings.h"
#include "harmonet/kernel/HarmonetTask.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndDriver.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <utility>

namespace Quon
{

namespace
{

constexpr unsigned long allResourceFX = (1UL << numResourceFX) - 1;

SndDriver* GetDriver()
{
    return theKernel ? theKernel->GetDriver() : nullptr;
}

float ClampGain(float gain)
{
    return std::clamp(gain, 0.0F, 1.0F);
}

} // namespace

SoundSystem::SoundSystem()
    : task(nullptr)
{
}

SoundSystem::~SoundSystem()
{
    Done();
}

bool SoundSystem::Init(OS* os, bool driverFlag)
{
    if (theKernel) {
        Report(MessageLevel::Error, "the sound system is already running");
        return false;
    }
    try {
        return Start(os, driverFlag);
    }
    catch (const std::bad_alloc&) {
        return false;
    }
}

bool SoundSystem::Start(OS* os, bool driverFlag)
{
    // They include the keys of the options.
    HarmonetStrings::Init();
    auto kernel = std::make_unique<SndKernel>();
    if (kernel->Init(os, driverFlag) != 0) {
        return false;
    }
    auto made = std::make_unique<HarmonetTask>(kernel.get());
    static_cast<void>(kernel.release());
    // This object still owns a task that the engine has stopped.
    delete task;
    task = made.release();
    return true;
}

void SoundSystem::Done()
{
    if (theKernel && theKernel->IsBusy()) {
        return;
    }
    delete std::exchange(task, nullptr);
}

bool SoundSystem::GetCaps(Caps& caps)
{
    caps = Caps();
    return theKernel && theKernel->GetCaps(caps);
}

bool SoundSystem::HasLostOutput()
{
    const SndDriver* driver = GetDriver();
    return driver && driver->HasLostOutput();
}

void SoundSystem::SetMainGain(float gain)
{
    SndDriver* driver = GetDriver();
    if (driver && !std::isnan(gain)) {
        driver->SetMainGain(ClampGain(gain));
    }
}

float SoundSystem::GetMainGain()
{
    SndDriver* driver = GetDriver();
    return driver ? driver->GetMainGain() : 0.0F;
}

void SoundSystem::Set2DMainGain(float gain)
{
    if (theKernel && !std::isnan(gain)) {
        theKernel->Set2DMainGain(ClampGain(gain));
    }
}

float SoundSystem::Get2DMainGain()
{
    return theKernel ? theKernel->GetMainGain2D() : 0.0F;
}

void SoundSystem::Set3DMainGain(float gain)
{
    if (theKernel && !std::isnan(gain)) {
        theKernel->Set3DMainGain(ClampGain(gain));
    }
}

float SoundSystem::Get3DMainGain()
{
    return theKernel ? theKernel->GetMainGain3D() : 0.0F;
}

void SoundSystem::SetMusicMainGain(float gain)
{
    if (theKernel && !std::isnan(gain)) {
        theKernel->SetMusicMainGain(ClampGain(gain));
    }
}

float SoundSystem::GetMusicMainGain()
{
    return theKernel ? theKernel->GetMainGainMusic() : 0.0F;
}

void SoundSystem::SetLowPass(float gainHF)
{
    if (theKernel && !std::isnan(gainHF)) {
        theKernel->SetLowPass(ClampGain(gainHF));
    }
}

float SoundSystem::GetLowPass()
{
    return theKernel ? theKernel->GetLowPass() : 0.0F;
}

void SoundSystem::SetDopplerFactor(float factor)
{
    if (theKernel && !std::isnan(factor)) {
        theKernel->SetDopplerFactor(std::clamp(factor, 0.0F, maxDopplerFactor));
    }
}

float SoundSystem::GetDopplerFactor()
{
    return theKernel ? theKernel->GetDoppler().GetFactor() : 0.0F;
}

void SoundSystem::SetSpeedOfSound(float speed)
{
    if (theKernel && speed > 0.0F && std::isfinite(speed)) {
        theKernel->SetSpeedOfSound(speed);
    }
}

float SoundSystem::GetSpeedOfSound()
{
    return theKernel ? theKernel->GetDoppler().GetSpeedOfSound() : 0.0F;
}

void SoundSystem::StopAll()
{
    if (theKernel) {
        theKernel->StopAll();
    }
}

void SoundSystem::StopAll2D()
{
    if (theKernel) {
        theKernel->StopAll2D();
    }
}

void SoundSystem::StopAll3D()
{
    if (theKernel) {
        theKernel->StopAll3D();
    }
}

void SoundSystem::PauseAll()
{
    if (theKernel) {
        theKernel->SetAllPaused(true);
    }
}

void SoundSystem::ResumeAll()
{
    if (theKernel) {
        theKernel->SetAllPaused(false);
    }
}

bool SoundSystem::IsAllPaused()
{
    return theKernel && theKernel->IsAllPaused();
}

void SoundSystem::SetMaxAudibleSounds(unsigned int count)
{
    if (theKernel) {
        theKernel->SetMaxAudible(static_cast<int>(count));
    }
}

unsigned int SoundSystem::GetMaxAudibleSounds()
{
    return theKernel ? static_cast<unsigned int>(theKernel->GetMaxAudible()) : 0;
}

void SoundSystem::DisableResourceFX(unsigned long mask)
{
    if (theKernel) {
        theKernel->SetResourceFX(theKernel->GetResourceFX() & ~mask);
    }
}

void SoundSystem::EnableResourceFX(unsigned long mask)
{
    if (theKernel) {
        theKernel->SetResourceFX(theKernel->GetResourceFX() | (mask & allResourceFX));
    }
}

unsigned long SoundSystem::GetResourceFX()
{
    return theKernel ? theKernel->GetResourceFX() & allResourceFX : 0;
}

std::size_t SoundSystem::Inspect(std::span<SoundState> states)
{
    return theKernel ? theKernel->Inspect(states) : 0;
}

void SoundSystem::SetTrace(SoundTrace* trace)
{
    SndKernel::Attach(trace);
}

std::uint32_t SoundSystem::GetClockMs()
{
    return theKernel ? theKernel->GetClockMs() : 0;
}

} // namespace Quon
