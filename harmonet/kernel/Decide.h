#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/instances/SoundReason.h"
#include "harmonet/kernel/ImportanceSort.h"

#include <array>
#include <cstdint>
#include <span>

namespace Quon
{

/// A sound that has just got a channel keeps it for this long, and one that has just lost it does not get
/// another: so a sound changes at most once in this time.
inline constexpr unsigned int settledMs = 200;

/// What makes a contender ineligible, or privileged.
enum ContenderTraits : std::uint16_t
{
    TraitPaused = 0x0001,
    TraitMusic = 0x0008, ///< Comes before every other sound of its list.
    TraitInRange = 0x0100,
    TraitLine = 0x0800, ///< The head of a sound along a line, which is never heard itself.
    TraitDelayed = 0x1000,
    TraitNewcomer = 0x2000 ///< Started during the running update, which leaves it alone.
};

/// A sound that asks for a channel, or has one, as values.
struct Contender
{
    std::int32_t priority; ///< Greater is more important.
    float distSqr; ///< Squared distance to the listener, not negative and not NaN.
    std::uint32_t name; ///< The same for like sounds; small numbers.
    std::uint16_t stateTimeMs; ///< Since it got or lost its channel, or the most that fits.
    std::uint16_t traits; ///< ContenderTraits.
};

/// Where contenders stand: one list after the other, each in its present order.
enum ContenderList
{
    FromPlaying,
    FromEmulated,
    FromWaiting,
    numContenderLists
};
using ContenderCounts = std::array<std::size_t, numContenderLists>;

/// Who is heard. Contenders are told by their number among those that were given. Kept from one decision to
/// the next, so that a steady number of sounds allocates nothing.
struct Decision
{
    static constexpr std::uint32_t nobody = 0xFFFFFFFF;

    /// Those that get or keep a channel, in the order in which they take it.
    EngineVector<std::uint32_t> chosen;
    /// Of each contender. Won and Protected are the reasons of those that were chosen; nobody else has them.
    EngineVector<SoundReason> reasons;
    /// Of each contender: 1.3 to the power of the number of like sounds that it lost to.
    EngineVector<float> multipliers;
    /// The numbers of all contenders, list after list, each list in its new order: the least important first.
    EngineVector<ImportanceSort::Item> ranking;
    /// The best of each list that was not chosen, or nobody. It moves in front of its equals.
    std::array<std::uint32_t, numContenderLists> runnersUp;

    // Working memory.
    ImportanceSort sort;
    EngineVector<std::uint64_t> keys; ///< Of each contender: its importance.
    EngineVector<std::uint32_t> lossesByName;
    EngineVector<float> factors; ///< By the number of losses.
};

/// Decides which of the contenders are heard when there are more than `limit`.
///
/// *Duplicates.* So that the channels go to different sounds, each of a crowd of like sounds counts as
/// farther away than it is, by a factor for each like sound that it loses to: the more important ones, by
/// priority and plain distance, and of its equals those before it.
///
/// *Order.* Each list is put in order by ImportanceKey() with the weighted distance; equals keep their order.
///
/// *Protected* are the sounds of the playing list younger than settledMs, whatever their number.
///
/// *Chosen* are then, until the limit is reached, the best of the three lists in turn; a tie goes to the
/// playing list, then to the emulated one. The best of a list is its first eligible music, else its most
/// important eligible sound, of equals the first.
///
/// *Eligible* is who is in range, settled, and neither in pause, delayed, a newcomer nor the head of a line.
HARMONET_INTERNAL_API void Decide(
    std::span<const Contender> contenders, const ContenderCounts& counts, int limit, Decision& decision);

} // namespace Quon
