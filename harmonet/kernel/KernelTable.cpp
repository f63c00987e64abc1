#include "harmonet/files/SndFile.h"
#include "harmonet/kernel/SndKernel.h"

#include <utility>

namespace Quon
{

namespace
{

// Whether a sound is on a list that is searched for like sounds.
bool IsFindable(SoundRow row)
{
    return row.List() != ListID::None && row.List() != ListID::Chosen;
}

} // namespace

void SndKernel::AddSound(SndBase* sound)
{
    soundTable.Add(sound->GetSoundID(), *sound);
    sound->tableID = sound->GetSoundID();
}

void SndKernel::UnregisterSound(SndBase* sound)
{
    soundTable.Remove(std::exchange(sound->tableID, 0));
}

void SndKernel::RemoveSound(SndBase* sound)
{
    TraceEnd(*sound);
    Unlist(*sound);
    UnregisterSound(sound);
    GiveUpName(*sound);
}

void SndKernel::Insert(SndBase& sound, ListID id)
{
    UseName(sound);
    GetList(id).InsertSorted(sound.rowNumber, id);
    names.Enter(sound.Row().Name(), GetOwnLength(sound));
}

void SndKernel::Unlist(SndBase& sound)
{
    const SoundRow row = sound.Row();
    if (IsFindable(row)) {
        names.Leave(row.Name());
    }
    if (row.List() != ListID::None) {
        GetList(row.List()).Remove(row);
    }
}

void SndKernel::GiveUpName(SndBase& sound)
{
    const SoundRow row = sound.Row();
    if (IsFindable(row)) {
        names.Leave(row.Name());
    }
    if (row.Name() != NameIndex::none) {
        names.GiveUp(std::exchange(row.Name(), NameIndex::none));
    }
}

void SndKernel::UseName(SndBase& sound)
{
    const SoundRow row = sound.Row();
    if (row.Name() != NameIndex::none) {
        return;
    }
    row.Name() = names.Use(sound.GetFileName(), sound.GetSubstName());
    if (IsFindable(row)) {
        names.Enter(row.Name(), GetOwnLength(sound));
    }
}

void SndKernel::NoteLength(const SndBase& sound)
{
    if (IsFindable(sound.Row())) {
        names.SetLength(sound.Row().Name(), GetOwnLength(sound));
    }
}

std::uint32_t SndKernel::GetOwnLength(const SndBase& sound)
{
    return sound.sndFile ? static_cast<std::uint32_t>(sound.sndFile->GetSoundLength()) : sound.soundLength;
}

// The length of the listed sounds with these names, except `except`; nullopt if there is none.
std::optional<std::uint32_t> SndKernel::FindLikeLength(std::uint32_t number, const SndBase* except)
{
    if (number == NameIndex::none) {
        return {};
    }
    const NameIndex::Name& name = names.At(number);
    if (name.numListed == (except && IsFindable(except->Row()) ? 1U : 0U)) {
        return {};
    }
    if (name.isUniform) {
        return name.lengthMs;
    }
    // The lengths differ, as with the rest of a queue: use the first one.
    for (const ListID id : regularLists) {
        for (const SndList::Entry& entry : GetList(id).GetEntries()) {
            const SoundRow row = entry.GetRow();
            if (!entry.IsStale() && row.Name() == number && row.GetSound() != except) {
                return GetOwnLength(*row.GetSound());
            }
        }
    }
    return {};
}

template<class Matches>
void SndKernel::DeleteFromTable(Matches matches)
{
    const std::size_t begin = walkMemory.size();
    soundTable.ForEach([&](const SndBase& sound) {
        if (matches(sound)) {
            walkMemory.push_back({static_cast<std::uint32_t>(sound.GetSoundID()), 0});
        }
    });
    const std::size_t end = walkMemory.size();
    for (std::size_t place = begin; place < end; ++place) {
        SndBase* sound = soundTable.Find(static_cast<int>(walkMemory[place].row));
        if (!sound || sound->IsInNotification()) {
            continue;
        }
        UnregisterSound(sound);
        delete sound;
    }
    walkMemory.resize(begin);
}

void SndKernel::DeleteSounds(Sound* parent)
{
    DeleteFromTable([parent](const SndBase& sound) { return sound.GetParentSound() == parent; });
}

void SndKernel::DeleteAllSounds(int kind)
{
    DeleteFromTable([kind](const SndBase& sound) { return IsOfKind(sound, kind); });
}

bool SndKernel::IsOfKind(const SndBase& sound, int kind)
{
    return kind == kindAll || (kind == kind3D && sound.Is3D()) ||
        (kind == kind2D && !sound.HasAnyFlag(Flag3D | FlagMusic));
}

template<class Matches>
void SndKernel::RefreshMatching(Matches matches)
{
    soundTable.ForEach([&](SndBase& sound) {
        if (matches(sound)) {
            sound.SetGain(SndBase::applyAgain);
        }
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

void SndKernel::RefreshLowPass(const Sound* parent)
{
    soundTable.ForEach([parent](SndBase& sound) {
        if (!parent || sound.GetParentSound() == parent) {
            sound.SetLowPass(SndBase::applyAgain);
        }
    });
}

} // namespace Quon
