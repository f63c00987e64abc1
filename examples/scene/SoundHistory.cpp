#include "examples/scene/SoundHistory.h"

#include "harmonet/instances/Snd3D.h"

#include <algorithm>

namespace Scene
{

namespace
{

/// The result of Particle::GetID() for a positional sound.
constexpr int soundNode = 16;

bool WasHeard(const SoundHistory::Entry& entry)
{
    return std::ranges::any_of(entry.changes,
        [](const SoundHistory::Change& change) { return change.state == SoundHistory::State::Heard; });
}

} // namespace

const char* SoundHistory::GetName(State state)
{
    switch (state) {
    case State::Started:
        return "started";
    case State::Heard:
        return "heard";
    case State::HeardAgain:
        return "heard again";
    case State::Emulated:
        return "emulated";
    case State::Ended:
        return "ended";
    case State::CutOff:
        return "cut off";
    }
    return "";
}

void SoundHistory::AddStart(int id, const std::string& file)
{
    Entry& entry = entries[id];
    entry.file = file;
    entry.isRunning = true;
    entry.changes.push_back({nowMs, State::Started});
}

void SoundHistory::RecordStates(const Quon::Particle& world)
{
    int running = 0;
    int heardNow = 0;
    for (const Quon::Particle* node = world.GetFirstChild(); node != nullptr; node = node->GetNextSibling()) {
        if (node->GetID() != soundNode) {
            continue;
        }
        const auto& sound = static_cast<const Quon::Snd3D&>(*node);
        const bool isHeard = sound.GetSndChannel() != nullptr;
        const auto place = entries.find(sound.GetSoundID());
        if (place == entries.end()) {
            continue;
        }
        Entry& entry = place->second;
        entry.isWatched = true;
        SetState(entry, !isHeard ? State::Emulated : WasHeard(entry) ? State::HeardAgain : State::Heard);
        ++running;
        heardNow += isHeard ? 1 : 0;
    }
    maxRunning = std::max(maxRunning, running);
    maxHeard = std::max(maxHeard, heardNow);
}

void SoundHistory::SetPlaces(int id, int count)
{
    const auto place = entries.find(id);
    if (place != entries.end()) {
        place->second.maxPlaces = std::max(place->second.maxPlaces, count);
    }
}

void SoundHistory::SetState(Entry& entry, State state)
{
    const State last = entry.changes.back().state;
    if (last != state && !(state == State::HeardAgain && last == State::Heard)) {
        entry.changes.push_back({nowMs, state});
    }
}

void SoundHistory::Finish(int soundID, State state, long leftMs)
{
    const auto place = entries.find(soundID);
    if (place == entries.end()) {
        return;
    }
    place->second.isRunning = false;
    place->second.leftMs = leftMs;
    SetState(place->second, state);
}

void SoundHistory::OnSoundEnd(int soundID, const Quon::PString&)
{
    Finish(soundID, State::Ended, 0);
}

void SoundHistory::OnSoundAbort(int soundID, const Quon::PString&, int remaining)
{
    Finish(soundID, State::CutOff, remaining);
}

} // namespace Scene
