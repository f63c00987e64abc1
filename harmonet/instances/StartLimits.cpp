#include "harmonet/instances/StartLimits.h"

#include "harmonet/definitions/DefinitionState.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/SndKernel.h"

#include <optional>

namespace Quon
{

namespace
{

template<class... Parts>
void ReportNotStarted(const SndBase& sound, const DefinitionState& definition, const Parts&... parts)
{
    Report(MessageLevel::Note, "sound ", sound.GetSoundID(), " ('", sound.GetFileName(),
        "') is not started: ", parts..., " of its definition '", definition.GetName(), "'");
}

float CalcHeardLevel(const SndBase& sound)
{
    if (theKernel->IsVirtual(sound) && !sound.IsPolyline()) {
        return 0.0F;
    }
    const std::optional<Vector3> listener = theKernel->GetListenerPlace();
    return sound.CalcLevel(listener ? &*listener : nullptr);
}

SndBase* FindToGiveWay(const SndBase& newcomer, const DefinitionState& definition)
{
    if (definition.limits.stealing == SoundStealing::None) {
        return nullptr;
    }
    const bool takesQuietest = definition.limits.stealing == SoundStealing::Quietest;
    SndBase* found = nullptr;
    float lowest = 0.0F;
    for (const int id : definition.running) {
        SndBase* const sound = theKernel->FindSound(id);
        if (!sound || sound->IsInNotification()) {
            continue;
        }
        const float level = takesQuietest ? CalcHeardLevel(*sound) : 0.0F;
        if (!found || level < lowest) {
            found = sound;
            lowest = level;
        }
    }
    return found && takesQuietest && CalcHeardLevel(newcomer) < lowest ? nullptr : found;
}

// A sound that an observer starts in response to an end takes the free place, and then the new sound does not
// start: otherwise the two could replace each other endlessly. For the same reason no sound is ended for one
// started meanwhile.
bool MakeRoom(SndBase& sound, DefinitionState& definition)
{
    const auto isFull = [&definition] {
        const int maximum = definition.limits.maxInstances;
        return maximum > 0 && definition.running.size() >= static_cast<std::size_t>(maximum);
    };
    const int id = sound.GetSoundID();
    std::size_t mayEnd = definition.running.size();
    while (isFull()) {
        if (definition.isGivingWay || mayEnd == 0) {
            return false;
        }
        --mayEnd;
        SndBase* const victim = FindToGiveWay(sound, definition);
        if (!victim) {
            return false;
        }
        definition.isGivingWay = true;
        delete victim;
        definition.isGivingWay = false;
        if (theKernel->FindSound(id) != &sound) {
            return false;
        }
    }
    return true;
}

} // namespace

bool AdmitStart(SndBase& sound)
{
    DefinitionState& definition = *sound.GetLimitedBy();
    const SoundLimits& limits = definition.limits;
    const int id = sound.GetSoundID();
    const std::int64_t now = theKernel->GetGameTime(0);
    if (definition.lastStart &&
        now - *definition.lastStart < limits.minIntervalMs * StartClock::microsecondsPerMs) {
        ReportNotStarted(sound, definition, "less than ", limits.minIntervalMs,
            " ms have passed since the last start of a sound");
        return false;
    }
    const bool hasRoom = MakeRoom(sound, definition);
    if (theKernel->FindSound(id) != &sound) {
        return false;
    }
    if (!hasRoom) {
        ReportNotStarted(sound, definition, "there are already ", limits.maxInstances, " running sounds");
        return false;
    }
    definition.NoteStart(id, now);
    return true;
}

} // namespace Quon
