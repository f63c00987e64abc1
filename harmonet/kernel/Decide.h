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

/// A sound that has just received a channel keeps it for this time, and one that has just lost it does not
/// get another, so that a sound changes at most once in this time.
inline constexpr unsigned int settledMs = 200;

/// Properties that make a contender ineligible or privileged.
enum ContenderTraits : std::uint16_t
{
    TraitPaused = 0x0001,
    TraitMusic = 0x0008, ///< Comes before every other sound of its list.
    TraitInRange = 0x0100,
    TraitLine = 0x0800, ///< The head of a sound along a line, which is never played itself.
    TraitDelayed = 0x1000,
    TraitNewcomer = 0x2000 ///< Started during the running update, which ignores it.
};

/// The values of a sound that has a channel or competes for one.
struct Contender
{
    std::int32_t priority; ///< Greater is more important.
    float distSqr; ///< Squared distance to the listener, not negative and not NaN.
    std::uint32_t name; ///< Equal for like sounds; a small number.
    std::uint16_t stateTimeMs; ///< Since it got or lost its channel, clamped to the type's maximum.
    std::uint16_t traits; ///< ContenderTraits.
};

/// The lists of contenders: one after the other, each in its current order.
enum ContenderList
{
    FromPlaying,
    FromEmulated,
    FromWaiting,
    numContenderLists
};
using ContenderCounts = std::array<std::size_t, numContenderLists>;

/// The result of a decision. Contenders are identified by their index. Reuse the object for each decision, so
/// that a constant number of sounds does not allocate.
struct Decision
{
    static constexpr std::uint32_t nobody = 0xFFFFFFFF;

    /// The contenders that get or keep a channel, in the order of selection.
    EngineVector<std::uint32_t> chosen;
    /// For each contender. Exactly the chosen ones have the reasons Won and Protected.
    EngineVector<SoundReason> reasons;
    /// For each contender: 1.3 to the power of the number of like sounds that it lost to.
    EngineVector<float> multipliers;
    /// The indices of all contenders, list after list, each list in its new order: the least important first.
    EngineVector<ImportanceSort::Item> ranking;
    /// The best contender of each list that was not chosen, or nobody. It moves before its equals.
    std::array<std::uint32_t, numContenderLists> runnersUp;

    // Working memory.
    ImportanceSort sort;
    EngineVector<std::uint64_t> keys; ///< For each contender: its importance.
    EngineVector<std::uint32_t> lossesByName;
    EngineVector<float> factors; ///< By the number of losses.
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
HARMONET_INTERNAL_API void Decide(
    std::span<const Contender> contenders, const ContenderCounts& counts, int limit, Decision& decision);

} // namespace Quon
