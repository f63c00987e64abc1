// The state of a sound for tools.

#include "harmonet/instances/SndBaseRow.h"
#include "harmonet/instances/SndPolyline.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/kernel/SoundState.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

SoundKind KindOf(const SndBase& sound)
{
    if (sound.IsMusic()) {
        return SoundKind::Music;
    }
    if (sound.IsPolyline()) {
        return SoundKind::Line;
    }
    if (sound.HasAnyFlag(FlagPolylineSource)) {
        return SoundKind::LineSource;
    }
    return sound.Is3D() ? SoundKind::Positional : SoundKind::NonPositional;
}

SoundPhase PhaseOf(const SndBase& sound, ListID list)
{
    switch (list) {
    case ListID::Playing:
        return SoundPhase::Heard;
    case ListID::Emulated:
        return SoundPhase::Virtual;
    case ListID::Waiting:
        return SoundPhase::Waiting;
    case ListID::Chosen:
        return sound.IsAudible() ? SoundPhase::Heard : SoundPhase::Waiting;
    case ListID::Paused:
        return sound.IsPlaying() ? SoundPhase::Virtual : SoundPhase::Waiting;
    case ListID::None:
        break;
    }
    return SoundPhase::Prepared;
}

// Reference counting of strings dominates the cost of a snapshot, and most strings are unchanged.
void Assign(PString& to, const PString& from)
{
    if (!(to == from)) {
        to = from;
    }
}

} // namespace

void SndBase::FillState(SoundState& state) const
{
    FillOwnState(state);
    if (IsPolyline()) {
        static_cast<const SndPolyline*>(this)->AddSourcesTo(state);
    }
}

void SndBase::FillOwnState(SoundState& state) const
{
    const SoundRow row = Row();
    state.id = soundID;
    state.kind = KindOf(*this);
    state.phase = PhaseOf(*this, row.List());
    state.reason = row.Reason();
    state.hasChannel = IsAudible();
    state.isFadingOut = HasAnyFlag(FlagFadeOut);
    state.isLooping = IsLooping();
    state.isCutOut = row.HasMark(RowCutout);
    Assign(state.definition, definitionName);
    Assign(state.fileName, fileName);
    state.priority = row.Priority();
    state.delayMs = GetDelay();
    state.distance = std::sqrt(row.DistSqr());
    state.maxDistance = row.MaxDistance();
    state.multiplier = row.Multiplier();
    state.gain = GetOutputGain();
    state.place = row.GetPlace();
    state.positionMs = static_cast<std::uint32_t>(GetCurrentLength());
    state.lengthMs = soundLength;
    const std::uint32_t clockMs = theKernel ? theKernel->GetClockMs() : 0;
    state.ageMs = startSerial != 0 ? clockMs - startedAt : 0;
    state.reasonAgeMs = clockMs - reasonSince;
}

// The line has the position of its nearest source, and is audible if one of its sources is.
void SndPolyline::AddSourcesTo(SoundState& state) const
{
    bool isPlaced = false;
    for (int rank = 0; rank < GetNumSounds(); ++rank) {
        const Snd3D* source = FindSource(rank);
        if (!source) {
            continue;
        }
        SoundState own;
        source->FillState(own);
        state.ageMs = std::max(state.ageMs, own.ageMs);
        if (source->GetInPause()) {
            continue;
        }
        if (!isPlaced) {
            state.distance = own.distance;
            state.place = own.place;
            state.positionMs = own.positionMs;
            state.multiplier = own.multiplier;
        }
        if (!isPlaced || (own.hasChannel && !state.hasChannel)) {
            state.phase = own.phase;
            state.reason = own.reason;
            state.reasonAgeMs = own.reasonAgeMs;
        }
        state.hasChannel = state.hasChannel || own.hasChannel;
        isPlaced = true;
    }
    if (isPlaced || state.phase == SoundPhase::Prepared) {
        return;
    }
    const bool hasListener = theKernel && theKernel->GetMicrophone();
    state.reason = hasListener ? SoundReason::BeyondReach : SoundReason::NoListener;
}

} // namespace Quon
