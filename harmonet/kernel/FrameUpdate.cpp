#include "harmonet/instances/Microphone.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndDriver.h"
#include "harmonet/voices/BlockPasses.h"

#include <cassert>
#include <cmath>
#include <limits>

namespace Quon
{

namespace
{

constexpr unsigned long minUpdateMs = 40;

// Converts seconds to whole milliseconds; negative values and NaN become 0.
std::uint32_t ToMilliseconds(float seconds, double maximum)
{
    constexpr double msPerSecond = 1000.0;
    const double ms = static_cast<double>(seconds) * msPerSecond;
    return ms > 0.0 ? static_cast<std::uint32_t>(std::fmin(ms, maximum)) : 0;
}

// Sets a flag during its lifetime, even if an exception is thrown.
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

void SndKernel::Update(float seconds)
{
    if (IsBusy()) {
        return;
    }
    elapsed += ToMilliseconds(seconds, std::numeric_limits<std::int32_t>::max());
    doppler.AddTime(seconds);
    if (elapsed < minUpdateMs) {
        return;
    }
    ForgetNewcomers();
    const SndBase::MusicHold hold;
    FlagScope running(updating);
    if (trace) {
        RunTraced(seconds);
    }
    else {
        RunFullUpdate(seconds);
    }
    SndBase::NoteMusicLoops();
    assert(IsConsistent());
}

UpdateStep SndKernel::MakeStep(float seconds) const
{
    const std::uint32_t ms = ToMilliseconds(seconds, std::numeric_limits<std::uint32_t>::max());
    return {seconds, ms, static_cast<std::uint32_t>(elapsed),
        static_cast<std::uint32_t>(options.minEmulationLength), Vector3(), false};
}

void SndKernel::RunFullUpdate(float seconds)
{
    driver->BeginUpdate(elapsed);
    UpdateStep step = MakeStep(seconds);
    step.listener = UpdateListener();
    // Cleared here and not at the end: a microphone that an observer activates from now on is handled in the
    // next update.
    step.listenerMoved = listenerChanged;
    listenerChanged = false;
    listenerMoves += step.listenerMoved;
    clockMs += static_cast<std::uint32_t>(elapsed);
    startClock.BeginUpdate(elapsed);
    FlagScope bearings(takesNewcomers);
    doppler.BeginUpdate();
    if (activeMicrophone) {
        doppler.FollowListener(step.listener);
    }

    const VirtualSounds all = UpdatePlaces(step);
    int due = CountDownDelays(step.listener);
    UpdateEmulated(step, all);
    UpdatePlaying(step);
    due += ApplyPauses(step);
    if (GetList(ListID::Emulated).GetCount() + GetAudibleCount() + due <= maxAudible) {
        StartReturned();
        StartEmulated();
        StartWaiting();
    }
    else {
        hasReturned = false;
        Allocate();
    }
    if (doppler.IsOn()) {
        UpdatePitches();
    }
    doppler.EndUpdate();
    driver->EndUpdate();
    elapsed = 0;
}

Vector3 SndKernel::UpdateListener()
{
    if (!activeMicrophone) {
        return Vector3{0.0F, 0.0F, 0.0F};
    }
    if (activeMicrophone->changed) {
        listenerChanged = true;
    }
    activeMicrophone->SndUpdate();
    return activeMicrophone->GetGlobalPosition();
}

// Returns the number of waiting sounds that are due. Notifies no observer, so a plain loop is safe.
int SndKernel::CountDownDelays(const Vector3& listener)
{
    int due = 0;
    GetList(ListID::Waiting).ForEach([&](SndBase& sound) {
        const auto left = std::int64_t{sound.GetDelay()} - static_cast<std::int64_t>(elapsed);
        sound.SetDelay(left > 0 ? static_cast<int>(left) : 0);
        if (left > 0 || sound.GetInPause()) {
            return;
        }
        ++due;
        sound.CalcDistSqr(listener);
    });
    return due;
}

// Gets the positions of the nodes that have moved, in their approximate memory order instead of the order of
// the lists, and starts counting where possible. This only updates the rows: a sound that an observer moves
// later is queried again.
SndKernel::VirtualSounds SndKernel::UpdatePlaces(const UpdateStep& step)
{
    VirtualSounds all;
    VirtualLanes found;
    // By index, since blocks may be added meanwhile.
    for (std::size_t number = 0; number < SoundRows::GetBlocks().size(); ++number) {
        SoundBlock& block = *SoundRows::GetBlocks()[number];
        SndBase::UpdatePlaces(block);
        LookAtVirtual(block, found);
        all.anyMoved = all.anyMoved || found.anyMoved;
        for (std::uint32_t lane = 0, end = block.end; found.anyMayEnd && lane < end; ++lane) {
            if (found.mayEnd[lane] == 0) {
                continue;
            }
            const SoundRow row(block, lane);
            row.GetSound()->StartCounting();
            all.onlyCount = all.onlyCount && (row.IsHeldBack() || row.CanCount(step));
        }
    }
    return all;
}

// Advances all virtual sounds by counting. No observer can be called, so the order makes no difference.
void SndKernel::CountEmulated(const UpdateStep& step)
{
    SoundBlock::Column<std::uint32_t> isLeft;
    for (SoundBlock* block : SoundRows::GetBlocks()) {
        const bool anyLeft = CountVirtual(*block, step, isLeft);
        for (std::uint32_t lane = 0, end = block->end; anyLeft && lane < end; ++lane) {
            if (isLeft[lane]) {
                block->sound[lane]->CountLoop(CalcSamples(block->rateHz[lane], step.ms));
            }
        }
    }
}

// From the tail, so that the head of a sound along a line, which counts as near, comes before its sources and
// can release them in the same update.
void SndKernel::UpdateEmulated(const UpdateStep& step, const VirtualSounds& all)
{
    if (GetList(ListID::Emulated).IsEmpty()) {
        return;
    }
    if (all.onlyCount) {
        if (step.listenerMoved || all.anyMoved) {
            GetList(ListID::Emulated).ForgetOrder();
        }
        CountEmulated(step);
        return;
    }
    SoundWalk walk = Walk(ListID::Emulated, SoundWalk::SkipNewcomers, SoundWalk::FromTail);
    while (const SoundRow row = walk.Next()) {
        if (CountOne(row, step) ||
            row.GetSound()->SndUpdate(step.seconds, step.listener, step.listenerMoved)) {
            row.AddStateTime(elapsed);
            continue;
        }
        // A line ends with its sources and has no separate reason.
        if (!row.HasAnyFlag(FlagPolyline)) {
            SetReason(row, SoundReason::TooShort);
        }
        delete row.GetSound();
    }
}

// SndUpdate() for a virtual sound that only has to be counted, nearly always with its row alone: an update
// that goes through the list takes half as long. Otherwise returns false and changes nothing.
bool SndKernel::CountOne(SoundRow row, const UpdateStep& step)
{
    if (row.IsHeldBack() || row.IsUnplaced() || !row.CanCount(step)) {
        return false;
    }
    if (row.HasAnyFlag(Flag3D) && (step.listenerMoved || row.HasMark(RowMoved))) {
        MeasureDistance(row, step.listener);
    }
    row.SetMark(RowMoved, false);
    const std::int32_t samples = row.CalcSamples(step);
    if (!row.CountSamples(samples)) {
        row.GetSound()->CountLoop(samples);
    }
    return true;
}

void SndKernel::UpdatePlaying(const UpdateStep& step)
{
    // For few sounds in a large crowd the walk is faster.
    constexpr std::size_t smallShare = 16;
    const std::span<SoundBlock* const> blocks = SoundRows::GetBlocks();
    if (static_cast<std::size_t>(GetAudibleCount()) > blocks.size() * SoundBlock::numLanes / smallShare) {
        if (const HeardSounds all = LookAtHeard(blocks, step, activeMicrophone != nullptr); all.stay) {
            UpdateStaying(step, all.anyMoved);
            return;
        }
    }
    SoundWalk walk = Walk(ListID::Playing);
    while (const SoundRow row = walk.Next()) {
        SndBase* sound = row.GetSound();
        if (!sound->SndUpdate(step.seconds, step.listener, step.listenerMoved)) {
            Unlist(*sound);
            delete sound;
            continue;
        }
        row.AddStateTime(elapsed);
        if (const SoundReason reason = WhyInaudible(row); reason != SoundReason::None) {
            LeavePlaying(*sound, reason);
        }
        else {
            row.Flags() = (row.Flags() | FlagDistLTMax) & ~FlagDistGTMax;
        }
    }
}

// UpdatePlaying() if all stay, with as much as possible in memory order.
void SndKernel::UpdateStaying(const UpdateStep& step, bool anyMoved)
{
    SndList& playing = GetList(ListID::Playing);
    if (step.listenerMoved || anyMoved) {
        playing.ForgetOrder();
    }
    for (SoundBlock* block : SoundRows::GetBlocks()) {
        UpdateHeard(*block, step);
    }
    if (!anyMoved) {
        return;
    }
    for (const SndList::Entry& entry : playing.GetEntries()) {
        const SoundRow row = entry.GetRow();
        if (row.HasMark(RowMoved) && row.HasAnyFlag(Flag3D) && !entry.IsStale()) {
            SndBase::SendMove(row);
        }
    }
}

void SndKernel::UpdatePitches()
{
    GetList(ListID::Playing).ForEach([](SndBase& sound) {
        if (sound.GetSndChannel()) {
            sound.UpdatePitch(*sound.GetSndChannel(), false);
        }
    });
}

void SndKernel::LeavePlaying(SndBase& sound, SoundReason reason)
{
    SetReason(sound.Row(), reason);
    sound.SetDistGTMax();
    Unlist(sound);
    EmulateOrDelete(sound);
}

void SndKernel::StartEmulated()
{
    SoundWalk walk = Walk(ListID::Emulated);
    while (const SoundRow row = walk.Next()) {
        if (row.HasAnyFlag(FlagPolyline)) {
            continue;
        }
        const SoundReason reason = WhyInaudible(row);
        if (reason == SoundReason::None) {
            StartOrDelete(*row.GetSound());
        }
        else {
            SetReason(row, reason);
        }
    }
}

void SndKernel::StartWaiting()
{
    SoundWalk walk = Walk(ListID::Waiting);
    while (const SoundRow row = walk.Next()) {
        if (row.HasMark(RowDelayed)) {
            SetReason(row, SoundReason::Delayed);
            continue;
        }
        const SoundReason reason = WhyInaudible(row);
        if (reason == SoundReason::None) {
            StartOrDelete(*row.GetSound());
            continue;
        }
        SetReason(row, reason);
        Unlist(*row.GetSound());
        EmulateOrDelete(*row.GetSound());
    }
}

void SndKernel::StartOrDelete(SndBase& sound)
{
    Unlist(sound);
    if (StartChannel(&sound)) {
        return;
    }
    SetReason(sound.Row(), SoundReason::Refused);
    delete &sound;
}

// Returns why a sound may not have a channel; None if it may. A sound that has lost its channel must be well
// inside its range.
SoundReason SndKernel::WhyInaudible(SoundRow row) const
{
    if (row.HasAnyFlag(FlagInPause)) {
        return SoundReason::Paused;
    }
    const bool isPositional = row.HasAnyFlag(Flag3D);
    if (isPositional && !activeMicrophone) {
        return SoundReason::NoListener;
    }
    const bool isVirtual = row.List() == ListID::Emulated;
    const bool isOut =
        isVirtual ? isPositional && !row.HasAnyFlag(FlagDistLTMax) : row.HasAnyFlag(FlagDistGTMax);
    return isOut ? SoundReason::BeyondReach : SoundReason::None;
}

} // namespace Quon
