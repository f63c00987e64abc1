// Allocation of channels when more sounds compete than may be audible: gather, decide, apply.

#include "harmonet/kernel/SndKernel.h"
#include "harmonet/voices/Growth.h"

#include <algorithm>
#include <cstring>

namespace Quon
{

namespace
{

constexpr ListID contenderLists[] = {ListID::Playing, ListID::Emulated, ListID::Waiting};

} // namespace

void SndKernel::Allocate()
{
    // The following sorted insertions must compare with the multipliers, even if that has been disabled.
    SndBase::SetCompareUsingMultiplier(true);
    Contenders contenders;
    std::ranges::transform(
        contenderLists, contenders.begin(), [this](ListID id) { return GetList(id).Compact(); });
    Decide(SoundRows::GetBlocks(), contenders, maxAudible, decision);
    NoteReasons();
    for (const std::uint32_t row : decision.chosen) {
        Unlist(*SoundRows::At(row).GetSound());
    }
    std::span<const ImportanceSort::Item> ranking = decision.ranking;
    for (std::size_t list = 0; list < numContenderLists; ++list) {
        const std::size_t count = contenders[list].size();
        GetList(contenderLists[list]).SetOrder(ranking.first(count), decision.runnersUp[list]);
        ranking = ranking.subspan(count);
    }
    for (const std::uint32_t row : decision.chosen) {
        GetList(ListID::Chosen).Append(row, ListID::Chosen);
    }

    // If an exception is thrown, running sounds that have not been handled return to the lists.
    struct ChosenScope
    {
        ~ChosenScope() { kernel.GiveBackChosen(); }
        SndKernel& kernel;
    };
    const ChosenScope scope{*this};
    EmulateLosers();
    StartChosen();
    EmulateWaiting();
}

void SndKernel::NoteReasons()
{
    const SoundReason* reasons = decision.reasons.data();
    for (SoundBlock* block : SoundRows::GetBlocks()) {
        // Few differ.
        for (std::uint32_t begin = 0; begin < block->end; begin += SoundBlock::laneGroup) {
            if (std::memcmp(&block->reason[begin], &reasons[begin], SoundBlock::laneGroup) == 0) {
                continue;
            }
            for (std::uint32_t lane = begin; lane < begin + SoundBlock::laneGroup; ++lane) {
                SetReason({*block, lane}, reasons[lane]);
            }
        }
        reasons += SoundBlock::numLanes;
    }
}

void SndKernel::GiveBackChosen()
{
    for (const SndList::Entry& entry : GetList(ListID::Chosen).Compact()) {
        SndBase& sound = *entry.GetRow().GetSound();
        Unlist(sound);
        Insert(sound, sound.IsAudible() ? ListID::Playing : ListID::Waiting);
    }
}

// Every sound that is still on the playing list has lost. From the head: the least important is removed
// first, so that a sound started by an observer does not compete with sounds about to be removed.
void SndKernel::EmulateLosers()
{
    SoundWalk walk = Walk(ListID::Playing);
    while (const SoundRow row = walk.Next()) {
        SndBase& sound = *row.GetSound();
        Unlist(sound);
        if (sound.IsEmulation() && IsLongEnough(sound) && sound.Emulate()) {
            Insert(sound, ListID::Emulated);
        }
        else {
            DeleteInaudible(sound);
        }
    }
}

void SndKernel::StartChosen()
{
    SoundWalk walk = Walk(ListID::Chosen, SoundWalk::Visit);
    while (const SoundRow row = walk.Next()) {
        SndBase& sound = *row.GetSound();
        if (!sound.IsAudible()) {
            StartOrDelete(sound);
            continue;
        }
        Unlist(sound);
        Insert(sound, ListID::Playing);
    }
}

// Sounds that still wait have lost for now. A sound with StartNoEmulation becomes virtual here too, whatever
// its length; any other must have enough left.
void SndKernel::EmulateWaiting()
{
    SoundWalk walk = Walk(ListID::Waiting);
    while (const SoundRow row = walk.Next()) {
        if (row.HasMark(RowDelayed)) {
            continue;
        }
        SndBase& sound = *row.GetSound();
        Unlist(sound);
        const bool isWanted = !sound.IsEmulation() || IsLongEnough(sound);
        if (!isWanted || !EmulateSound(&sound)) {
            DeleteInaudible(sound);
        }
    }
}

} // namespace Quon
