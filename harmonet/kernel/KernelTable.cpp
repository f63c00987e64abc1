#include "harmonet/kernel/SndKernel.h"

#include <utility>

namespace Quon
{

void SndKernel::RemoveSound(SndBase* sound)
{
    Unlist(*sound);
    soundTable.Remove(sound);
}

void SndKernel::Unlist(SndBase& sound)
{
    if (sound.list)
        sound.list->Remove(sound);
}

template<class Matches>
void SndKernel::DeleteFromTable(Matches matches)
{
    EngineVector<KnownSound> found = walkBuffers.Take();
    soundTable.ForEach([&](SndBase& sound) {
        if (matches(sound))
            found.push_back({&sound, sound.GetSoundID()});
    });
    SoundWalk walk(*this, std::move(found));
    while (SndBase* sound = walk.Next()) {
        if (sound->IsBeingTold())
            continue;
        soundTable.Remove(sound);
        delete sound;
    }
}

void SndKernel::DeleteSounds(Sound* parent)
{
    DeleteFromTable([parent](const SndBase& sound) { return sound.GetParentSound() == parent; });
}

void SndKernel::DeleteAllSounds(int kind)
{
    constexpr int kindAll = 0;
    constexpr int kind2D = 2;
    constexpr int kind3D = 3;
    DeleteFromTable([kind](const SndBase& sound) {
        switch (kind) {
        case kindAll:
            return true;
        case kind2D:
            return !sound.HasAnyFlag(Flag3D | FlagMusic);
        case kind3D:
            return sound.Is3D();
        default:
            return false;
        }
    });
}

template<class Matches>
void SndKernel::RefreshMatching(Matches matches)
{
    constexpr float applyAgain = -1.0F;
    soundTable.ForEach([&](SndBase& sound) {
        if (matches(sound))
            sound.SetGain(applyAgain);
    });
}

void SndKernel::RefreshGains(int kind)
{
    constexpr std::uint32_t kindFlags = Flag3D | FlagMusic;
    RefreshMatching([kind](const SndBase& sound) {
        return (sound.GetSndFlags() & kindFlags) == (static_cast<std::uint32_t>(kind) & kindFlags);
    });
}

void SndKernel::RefreshGains(Sound* parent)
{
    RefreshMatching([parent](const SndBase& sound) { return sound.GetParentSound() == parent; });
}

} // namespace Quon
