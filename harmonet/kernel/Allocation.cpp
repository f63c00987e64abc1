// Allocation of channels when more sounds compete than may be audible: gather, decide, apply.

#include "harmonet/kernel/Growth.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/kernel/SoundWalk.h"

#include <algorithm>

namespace Quon
{

namespace
{

constexpr ListID contenderLists[] = {ListID::Playing, ListID::Emulated, ListID::Waiting};

// All traits but one have the same bits as the flags and marks.
std::uint16_t GetTraits(const SoundRow& row)
{
    constexpr std::uint32_t asFlags = TraitMusic | TraitInRange | TraitLine;
    constexpr std::uint32_t asMarks = TraitDelayed | TraitNewcomer;
    constexpr int pausedShift = 29;
    static_assert(asFlags == (FlagMusic | FlagDistLTMax | FlagPolyline));
    static_assert(asMarks == (RowDelayed | RowNewcomer));
    static_assert(TraitPaused == FlagInPause >> pausedShift);
    return static_cast<std::uint16_t>(
        (row.flags & asFlags) | (row.marks & asMarks) | (row.flags >> pausedShift & TraitPaused));
}

} // namespace

void SndKernel::Allocate()
{
    // The following sorted insertions must compare with the multipliers, even if that has been disabled.
    SndBase::SetCompareUsingMultiplier(true);
    contenders.clear();
    ContenderCounts counts{};
    for (std::size_t list = 0; list < numContenderLists; ++list) {
        counts[list] = GatherContenders(contenderLists[list]);
    }
    Decide(contenders, counts, maxAudible, decision);
    const auto toRow = [&](std::uint32_t& number) {
        std::size_t list = 0;
        for (; list + 1 < numContenderLists && number >= counts[list]; ++list) {
            number -= static_cast<std::uint32_t>(counts[list]);
        }
        number = GetList(contenderLists[list]).Compact()[number].row;
    };
    std::ranges::for_each(decision.chosen, toRow);
    for (std::uint32_t& runnerUp : decision.runnersUp) {
        if (runnerUp != Decision::nobody) {
            toRow(runnerUp);
        }
    }
    std::size_t first = 0;
    for (std::size_t list = 0; list < numContenderLists; ++list) {
        TakeOver(contenderLists[list], first);
        first += counts[list];
    }
    TakeChosen();

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

// Appends the sounds of that list; returns their number.
std::size_t SndKernel::GatherContenders(ListID id)
{
    constexpr std::uint32_t maxStateTime = 0xFFFF;
    const std::size_t first = contenders.size();
    ResizeTo(contenders, first + static_cast<std::size_t>(GetList(id).GetCount()));
    Contender* contender = contenders.data() + first;
    GetList(id).Compact([&](const SoundRow& row) {
        *contender++ = {row.priority, row.distSqr, row.nameNumber,
            static_cast<std::uint16_t>(std::min(row.stateTimeMs, maxStateTime)), GetTraits(row)};
    });
    return contenders.size() - first;
}

// Applies the decisions to the sounds of a list, whose first contender is `first`, and sorts them.
void SndKernel::TakeOver(ListID id, std::size_t first)
{
    const std::span<SndList::Entry> entries = GetList(id).Compact();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        SoundRow& row = entries[i].GetRow();
        row.multiplier = decision.multipliers[first + i];
        SetReason(row, decision.reasons[first + i]);
    }
    const std::span ranked = std::span(decision.ranking).subspan(first, entries.size());
    const std::size_t begin = walkMemory.size();
    walkMemory.insert(walkMemory.end(), entries.begin(), entries.end());
    std::ranges::transform(ranked, entries.begin(),
        [&](const ImportanceSort::Item& item) { return walkMemory[begin + item.number - first]; });
    walkMemory.resize(begin);
    GetList(id).SetInOrder();
}

// Removes the chosen sounds from their lists, and moves the best of the others before their equals.
void SndKernel::TakeChosen()
{
    for (const std::uint32_t row : decision.chosen) {
        Unlist(*SoundRows::At(row).sound);
        GetList(ListID::Chosen).Append(row, ListID::Chosen);
    }
    for (const std::uint32_t row : decision.runnersUp) {
        if (row == Decision::nobody) {
            continue;
        }
        SndList& list = GetList(SoundRows::At(row).list);
        const ListID id = SoundRows::At(row).list;
        list.Remove(SoundRows::At(row));
        list.InsertSorted(row, id);
    }
}

void SndKernel::GiveBackChosen()
{
    for (const SndList::Entry& entry : GetList(ListID::Chosen).Compact()) {
        SndBase& sound = *entry.GetRow().sound;
        Unlist(sound);
        Insert(sound, sound.IsAudible() ? ListID::Playing : ListID::Waiting);
    }
}

// Every sound that is still on the playing list has lost. From the head: the least important is removed
// first, so that a sound started by an observer does not compete with sounds about to be removed.
void SndKernel::EmulateLosers()
{
    SoundWalk walk(*this, ListID::Playing, SoundWalk::FromHead, SoundWalk::SkipNewcomers);
    while (const SoundRow* row = walk.Next()) {
        SndBase& sound = *row->sound;
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
    SoundWalk walk(*this, ListID::Chosen, SoundWalk::FromHead, SoundWalk::Visit);
    while (const SoundRow* row = walk.Next()) {
        SndBase& sound = *row->sound;
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
    SoundWalk walk(*this, ListID::Waiting, SoundWalk::FromHead, SoundWalk::SkipNewcomers);
    while (const SoundRow* row = walk.Next()) {
        if (row->HasMark(RowDelayed)) {
            continue;
        }
        SndBase& sound = *row->sound;
        Unlist(sound);
        const bool isWanted = !sound.IsEmulation() || IsLongEnough(sound);
        if (!isWanted || !EmulateSound(&sound)) {
            DeleteInaudible(sound);
        }
    }
}

} // namespace Quon
