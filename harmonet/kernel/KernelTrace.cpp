// The kernel's interface for tools: snapshots and the trace.

#include "harmonet/kernel/SndKernel.h"
#include "harmonet/kernel/SoundTrace.h"

#include <utility>

namespace Quon
{

SoundTrace::~SoundTrace()
{
    SndKernel::Detach(*this);
}

SoundTrace* SndKernel::trace = nullptr;

void SndKernel::Attach(SoundTrace* newTrace)
{
    trace = newTrace;
    if (theKernel) {
        theKernel->soundTable.ForEach([](SndBase& sound) { sound.traced = 0; });
    }
}

void SndKernel::Detach(const SoundTrace& oldTrace)
{
    if (trace == &oldTrace) {
        trace = nullptr;
    }
}

std::size_t SndKernel::Inspect(std::span<SoundState> states) const
{
    std::size_t count = 0;
    soundTable.ForEach([&](const SndBase& sound) {
        if (count < states.size()) {
            sound.FillState(states[count]);
        }
        ++count;
    });
    return count;
}

void SndKernel::RunTraced(float seconds)
{
    using Clock = std::chrono::steady_clock;
    const auto elapsedMs = static_cast<std::uint32_t>(elapsed);
    const Clock::time_point begin = Clock::now();
    RunFullUpdate(seconds);
    const std::chrono::nanoseconds cost = Clock::now() - begin;
    // An observer may have detached it.
    if (!trace) {
        return;
    }
    UpdateRecord record{elapsedMs, cost, GetAudibleCount(), GetList(ListID::Emulated).GetCount(),
        GetList(ListID::Waiting).GetCount(), maxAudible, activeMicrophone != nullptr,
        GetListenerPlace().value_or(Vector3{0.0F, 0.0F, 0.0F})};
    trace->OnUpdate(record);
    soundTable.ForEach([this](SndBase& sound) { TraceChange(sound); });
}

void SndKernel::TraceChange(SndBase& sound)
{
    if (!trace || !IsListed(sound)) {
        return;
    }
    const SoundRow row = sound.Row();
    SoundState state;
    auto phase = static_cast<unsigned int>(row.List());
    auto reason = static_cast<unsigned int>(row.Reason());
    const bool isLine = row.HasAnyFlag(FlagPolyline);
    // The row of a line's head does not change; the state of its sources does.
    if (isLine) {
        sound.FillState(state);
        phase = static_cast<unsigned int>(state.phase);
        reason = static_cast<unsigned int>(state.reason);
    }
    constexpr unsigned int isTraced = 0x8000;
    constexpr unsigned int isFading = 0x1000;
    const auto now = static_cast<std::uint16_t>(
        isTraced | (row.HasAnyFlag(FlagFadeOut) ? isFading : 0U) | phase << 8 | reason);
    const std::uint16_t before = std::exchange(sound.traced, now);
    if (before == now) {
        return;
    }
    if (!isLine) {
        sound.FillState(state);
    }
    if (before == 0) {
        trace->OnStart(state);
    }
    else {
        trace->OnChange(state);
    }
}

void SndKernel::TraceEnd(SndBase& sound)
{
    if (!trace || (sound.traced == 0 && !IsListed(sound) && !sound.IsPlaying())) {
        return;
    }
    SoundState state;
    sound.FillOwnState(state);
    if (sound.traced == 0) {
        trace->OnStart(state);
    }
    trace->OnEnd(state);
}

void SndKernel::TraceNotice(SoundNotice notice, int soundID, const PString& fileName)
{
    if (trace) {
        trace->OnNotice(notice, soundID, fileName);
    }
}

} // namespace Quon
