#include "harmonet/kernel/ChannelPicker.h"
#include "harmonet/kernel/SndKernel.h"

namespace Quon
{

namespace
{

// A sound that has just got its channel keeps it for this long.
constexpr unsigned long protectedMs = 200;

// The sounds that have won. Those that an exception keeps from being dealt with go back to the lists, so that
// a running sound is never on none.
class ChosenList
{
public:
    ChosenList(SndList& newPlayingList, SndList& newWaitingList)
        : playingList(newPlayingList)
        , waitingList(newWaitingList)
    {
    }
    ~ChosenList()
    {
        while (SndBase* sound = sounds.TakeHead())
            (sound->IsAudible() ? playingList : waitingList).InsertSorted(*sound);
    }
    ChosenList(const ChosenList&) = delete;
    ChosenList& operator=(const ChosenList&) = delete;

    SndList sounds;

private:
    SndList& playingList;
    SndList& waitingList;
};

} // namespace

void SndKernel::Allocate()
{
    PutInOrder();
    ChosenList chosen(playingList, waitingList);
    ProtectYoung(chosen.sounds);
    ChooseBest(chosen.sounds);
    EmulateLosers();
    StartChosen(chosen.sounds);
    EmulateWaiting();
}

void SndKernel::PutInOrder()
{
    // The sorted insertions that follow compare with the multipliers, whoever has switched that off.
    SndBase::SetCompareUsingMultiplier(true);
    SndList* const lists[] = {&playingList, &emulatedList, &waitingList};
    importanceOrder.Apply(lists, names);
}

void SndKernel::ProtectYoung(SndList& chosen)
{
    for (SndBase* sound = playingList.GetHead(); sound;) {
        SndBase* next = playingList.GetNext(*sound);
        if (sound->stateTime < protectedMs) {
            playingList.Remove(*sound);
            chosen.Append(*sound);
        }
        sound = next;
    }
}

// Merges the best of the three lists until the channels are used up. A tie goes to the playing sound, then to
// the emulated one.
void SndKernel::ChooseBest(SndList& chosen)
{
    struct Source
    {
        explicit Source(SndList& newList, std::uint32_t horizon)
            : list(newList)
            , picker(newList, horizon)
            , candidate(picker.PickBest())
        {
        }

        SndList& list;
        ChannelPicker picker;
        SndBase* candidate;
    };
    Source sources[] = {
        Source(playingList, updateHorizon),
        Source(emulatedList, updateHorizon),
        Source(waitingList, updateHorizon),
    };
    while (chosen.GetCount() < maxAudible) {
        Source* best = nullptr;
        for (Source& source : sources) {
            if (source.candidate && (!best || *best->candidate < *source.candidate))
                best = &source;
        }
        if (!best)
            break;
        SndBase* sound = best->candidate;
        best->candidate = best->picker.PickBest();
        chosen.Append(*sound);
    }
    for (Source& source : sources) {
        if (source.candidate)
            source.list.InsertSorted(*source.candidate);
    }
}

// Everything that is still on the playing list has lost. From the head: the least important goes first, so
// that what an observer starts in answer does not compete with sounds that are about to go.
void SndKernel::EmulateLosers()
{
    SoundWalk walk(*this, playingList, SoundWalk::FromHead, SoundWalk::PassOver);
    while (SndBase* sound = walk.Next()) {
        Unlist(*sound);
        if (sound->IsEmulation() && IsLongEnough(*sound) && sound->Emulate())
            emulatedList.InsertSorted(*sound);
        else
            delete sound;
    }
}

void SndKernel::StartChosen(SndList& chosen)
{
    while (SndBase* sound = chosen.TakeHead()) {
        if (sound->IsAudible())
            playingList.InsertSorted(*sound);
        else if (!StartChannel(sound))
            delete sound;
    }
}

// What still waits has lost for now. A sound that may not be emulated is so here all the same, whatever its
// length; only one that may is held to have enough left.
void SndKernel::EmulateWaiting()
{
    SoundWalk walk(*this, waitingList, SoundWalk::FromHead, SoundWalk::PassOver);
    while (SndBase* sound = walk.Next()) {
        if (sound->delay > 0)
            continue;
        Unlist(*sound);
        const bool isWanted = !sound->IsEmulation() || IsLongEnough(*sound);
        if (!isWanted || !EmulateSound(sound))
            delete sound;
    }
}

} // namespace Quon
