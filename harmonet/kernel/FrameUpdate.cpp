#include "harmonet/engine/Vector.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndDriver.h"

#include <cassert>
#include <cmath>
#include <limits>

namespace Quon
{

namespace
{

constexpr unsigned long minUpdateMs = 40;
constexpr double msPerSecond = 1000.0;

// Seconds to whole milliseconds; what is no time at all, or not a number, counts as none.
std::uint32_t ToMilliseconds(float seconds)
{
    const double ms = static_cast<double>(seconds) * msPerSecond;
    if (!(ms > 0.0))
        return 0;
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::uint32_t>(std::fmin(ms, most));
}

// Sets a flag for as long as the object lives, also when an exception passes through.
class FlagScope
{
public:
    explicit FlagScope(bool& newFlag)
        : flag(newFlag)
    {
        flag = true;
    }
    ~FlagScope() { flag = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& flag;
};

} // namespace

/// What a full update hands to every sound.
struct SndKernel::UpdateStep
{
    float seconds;
    Vector3 listener;
    bool listenerMoved;
};

void SndKernel::Update(float seconds)
{
    if (IsBusy())
        return;
    elapsed += ToMilliseconds(seconds);
    if (elapsed < minUpdateMs)
        return;
    FlagScope running(updating);
    RunFullUpdate(seconds);
    assert(IsConsistent());
}

void SndKernel::RunFullUpdate(float seconds)
{
    driver->BeginUpdate(elapsed);
    UpdateStep step;
    step.seconds = seconds;
    step.listener = UpdateListener();
    // Cleared here and not at the end: a microphone that an observer activates from now on is news for the
    // next update.
    step.listenerMoved = listenerChanged;
    listenerChanged = false;
    updateHorizon = startCounter;

    const int due = CountDownDelays(step.listener);
    UpdateEmulated(step);
    UpdatePlaying(step);
    if (emulatedList.GetCount() + GetAudibleCount() + due <= maxAudible) {
        StartEmulated();
        StartWaiting();
    }
    else {
        Allocate();
    }
    driver->EndUpdate();
    elapsed = 0;
}

Vector3 SndKernel::UpdateListener()
{
    if (!activeMicrophone)
        return Vector3{0.0F, 0.0F, 0.0F};
    if (activeMicrophone->changed)
        listenerChanged = true;
    activeMicrophone->SndUpdate();
    return activeMicrophone->GetGlobalPosition();
}

// Returns how many waiting sounds are due. Tells nobody, so that a plain walk will do.
int SndKernel::CountDownDelays(const Vector3& listener)
{
    int due = 0;
    for (SndBase* sound = waitingList.GetHead(); sound; sound = waitingList.GetNext(*sound)) {
        const std::int64_t left =
            static_cast<std::int64_t>(sound->delay) - static_cast<std::int64_t>(elapsed);
        sound->SetDelay(left > 0 ? static_cast<int>(left) : 0);
        if (left <= 0 && !sound->GetInPause()) {
            ++due;
            sound->CalcDistSqr(listener);
            waitingList.ForgetOrder();
        }
    }
    return due;
}

// From the tail, so that the head of a sound along a line, which counts as near, comes before its sources and
// can release them in the same update.
void SndKernel::UpdateEmulated(const UpdateStep& step)
{
    SoundWalk walk(*this, emulatedList, SoundWalk::FromTail, SoundWalk::PassOver);
    while (SndBase* sound = walk.Next()) {
        if (UpdateSound(*sound, step))
            sound->stateTime += elapsed;
        else
            delete sound;
    }
}

// A list whose sounds have come nearer or gone away may not be in order any more.
bool SndKernel::UpdateSound(SndBase& sound, const UpdateStep& step)
{
    const float distanceBefore = sound.distSqr;
    const bool goesOn = sound.SndUpdate(step.seconds, step.listener, step.listenerMoved);
    if (sound.distSqr != distanceBefore && sound.list)
        sound.list->ForgetOrder();
    return goesOn;
}

void SndKernel::UpdatePlaying(const UpdateStep& step)
{
    SoundWalk walk(*this, playingList, SoundWalk::FromHead, SoundWalk::PassOver);
    while (SndBase* sound = walk.Next()) {
        if (!UpdateSound(*sound, step)) {
            Unlist(*sound);
            delete sound;
            continue;
        }
        sound->stateTime += elapsed;
        if (MustLeavePlaying(*sound))
            LeavePlaying(*sound);
        else
            sound->SetDistLTMax();
    }
}

bool SndKernel::MustLeavePlaying(const SndBase& sound) const
{
    return sound.GetInPause() || (sound.Is3D() && !activeMicrophone) || sound.IsDistGTMax();
}

void SndKernel::LeavePlaying(SndBase& sound)
{
    sound.SetDistGTMax();
    Unlist(sound);
    EmulateOrDelete(sound);
}

void SndKernel::StartEmulated()
{
    SoundWalk walk(*this, emulatedList, SoundWalk::FromHead, SoundWalk::PassOver);
    while (SndBase* sound = walk.Next()) {
        if (MayReturn(*sound))
            StartOrDelete(*sound);
    }
}

bool SndKernel::MayReturn(const SndBase& sound) const
{
    if (sound.HasAnyFlag(FlagInPause | FlagPolyline))
        return false;
    return !sound.Is3D() || (activeMicrophone && sound.IsDistLTMax());
}

void SndKernel::StartWaiting()
{
    SoundWalk walk(*this, waitingList, SoundWalk::FromHead, SoundWalk::PassOver);
    while (SndBase* sound = walk.Next()) {
        if (sound->delay > 0)
            continue;
        if (MayStart(*sound)) {
            StartOrDelete(*sound);
        }
        else {
            Unlist(*sound);
            EmulateOrDelete(*sound);
        }
    }
}

bool SndKernel::MayStart(const SndBase& sound) const
{
    return !sound.GetInPause() && (!sound.Is3D() || activeMicrophone) && !sound.IsDistGTMax();
}

void SndKernel::StartOrDelete(SndBase& sound)
{
    Unlist(sound);
    if (!StartChannel(&sound))
        delete &sound;
}

} // namespace Quon
