#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/voices/ImportanceSort.h"

#include <array>
#include <cstdint>
#include <span>

namespace Quon
{

/// A sound that has just received a channel keeps it for this time, and one that has just lost it does not
/// get another, so that a sound changes at most once in this time.
inline constexpr unsigned int settledMs = 200;

/// The lists of contenders, each in its current order.
enum ContenderList
{
    FromPlaying,
    FromEmulated,
    FromWaiting,
    numContenderLists
};
using Contenders = std::array<std::span<const ListEntry>, numContenderLists>;

/// The result of a decision. Contenders are identified by their rows. Reuse the object for each decision, so
/// that a constant number of sounds does not allocate.
struct Decision
{
    static constexpr std::uint32_t nobody = 0xFFFFFFFF;

    /// The contenders that get or keep a channel, in the order of selection.
    EngineVector<std::uint32_t> chosen;
    /// For each row: its reason. Exactly the chosen ones have the reasons Won and Protected.
    EngineVector<SoundReason> reasons;
    /// All contenders, list after list, each list in its new order: the least important first.
    EngineVector<ImportanceSort::Item> ranking;
    /// The best contender of each list that was not chosen, or nobody. It moves before its equals.
    std::array<std::uint32_t, numContenderLists> runnersUp;

    // Working memory.
    ImportanceSort sort;
    EngineVector<std::uint32_t> lossesByName;
    EngineVector<float> factors; ///< By the number of losses.
    /// The best of each list, as many as can win and one more.
    std::array<EngineVector<std::uint32_t>, numContenderLists> best;
};

/// Decides which of the contenders get a channel when there are more than `limit`.
///
/// *Duplicates.* To assign the channels to different sounds, the distance of a sound is scaled by a factor
/// for each like sound that it loses to: the more important ones, by priority and plain distance, and equal
/// ones before it.
///
/// *Order.* Each list is sorted by ImportanceKey() with the weighted distance; equals keep their order.
///
/// *Protected* are sounds of the playing list younger than settledMs, whatever their number.
///
/// *Chosen* is then, until the limit is reached, the best sound of the three lists; a tie goes to the playing
/// list, then to the emulated one. The best of a list is its first eligible music, otherwise its most
/// important eligible sound, and of equals the first.
///
/// *Eligible* is a sound that is in range, settled, and neither paused, delayed, a newcomer nor the head of a
/// line.
///
/// Contenders are exactly the rows of `blocks` that are on the playing, the emulated or the waiting list.
/// Changes nothing in the rows but the multipliers of the contenders: 1.3 to the power of the number of like
/// sounds that the sound lost to.
void Decide(std::span<SoundBlock* const> blocks, const Contenders& contenders, int limit, Decision& decision);

} // namespace Quon
