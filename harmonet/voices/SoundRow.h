#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Vector.h"
#include "harmonet/voices/Importance.h"
#include "harmonet/voices/Mask.h"
#include "harmonet/voices/SndFlags.h"
#include "harmonet/voices/SoundReason.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace Quon
{

class SndBase;

/// The kernel's lists; a sound is on one at most.
enum class ListID : std::uint8_t
{
    None,
    Playing, ///< It has a channel.
    Emulated, ///< It runs without a channel.
    Waiting, ///< It has been started and not handled yet.
    Chosen, ///< During an allocation: it has won, and is about to get or keep its channel.
    Paused ///< Time is stopped for it.
};
inline constexpr std::size_t numLists = 6;
/// The lists that sounds can be on between two updates, in the order of a search.
inline constexpr ListID regularLists[] = {ListID::Playing, ListID::Emulated, ListID::Waiting, ListID::Paused};

/// Whether the sounds of a list have channels or compete for them.
constexpr bool IsContender(ListID list)
{
    return list == ListID::Playing || list == ListID::Emulated || list == ListID::Waiting;
}

/// The state time of a new or waiting sound: it exceeds settledMs, so that the sound is not treated as having
/// just lost its channel.
inline constexpr std::uint32_t waitingStateTimeMs = 1000;

/// The kernel's marks of a sound, besides its flags.
enum RowMarks : std::uint32_t
{
    RowMoved = 0x0001, ///< Its node has moved since the last update.
    RowCutout = 0x0004, ///< It is not audible beyond its maximum distance.
    RowCounted = 0x0008, ///< SoundRow::SamplesLeft() counts, and its file lags.
    RowRewound = 0x0010, ///< Counting has passed the end of the loop.
    RowOwnRate = 0x0020, ///< Its rate differs from that of its file.
    RowPlaced = 0x0040, ///< Its place has been computed before.
    RowLoopsWhole = 0x0080, ///< While it counts: its loop is the whole file.
    RowReturns = 0x0200, ///< On the playing list without a channel: it resumes from a pause.
    RowWasHeard = 0x0400, ///< On the paused list: it had a channel, or gets one at once.
    RowWasWaiting = 0x0800, ///< On the paused list: it was waiting to start.
    RowDelayed = 0x1000, ///< Its delay is above 0.
    RowNewcomer = 0x2000 ///< It was started during the running update.
};

/// One step of a full update, passed to every sound.
struct UpdateStep
{
    float seconds;
    std::uint32_t ms; ///< Time by which a virtual sound advances.
    std::uint32_t elapsedMs; ///< Time that counts for the state times.
    std::uint32_t minEmulationMs; ///< A virtual sound with less than this plus the step left ends.
    Vector3 listener;
    bool listenerMoved;
};

/// The squared distance between two points; infinite for coordinates that are NaN.
constexpr float CalcDistSqr(float x, float y, float z, const Vector3& listener)
{
    const float squared = (x - listener.x) * (x - listener.x) + (y - listener.y) * (y - listener.y) +
        (z - listener.z) * (z - listener.z);
    constexpr float infinity = std::numeric_limits<float>::infinity();
    return squared < infinity ? squared : infinity;
}

/// The flags for the range of a sound.
constexpr std::uint32_t CalcRange(float distSqr, float maxDistance, std::uint32_t marks)
{
    // Factor on the squared distance: about 1 % of the distance itself. Between the two limits neither flag
    // is set, so that a sound at the edge does not toggle in each update.
    constexpr float outerBand = 1.02F;
    const float maxDistSqr = maxDistance * maxDistance;
    const std::uint32_t inside = Mask((marks & RowCutout) == 0) | Mask(maxDistSqr > distSqr);
    const std::uint32_t beyond = ~inside & Mask(maxDistSqr * outerBand < distSqr);
    return (inside & FlagDistLTMax) | (beyond & FlagDistGTMax);
}

/// The sample frames that a sound plays in a number of milliseconds.
constexpr std::int32_t CalcSamples(std::uint32_t rateHz, std::uint32_t ms)
{
    return static_cast<std::int32_t>(rateHz * ms / 1000U);
}

constexpr std::uint32_t AddClamped(std::uint32_t value, std::uint32_t more)
{
    const std::uint32_t sum = value + more;
    return sum | Mask(sum < value);
}

/// What a full update reads and writes of a number of sounds: an array for each value, indexed by the lane of
/// the sound. An update reads only the arrays that it needs, in memory order, and can use vector
/// instructions.
struct alignas(std::max_align_t) SoundBlock
{
    static constexpr std::uint32_t numLanes = 512;
    static constexpr std::uint32_t laneGroup = 16; ///< A multiple of the length of vectors.
    static constexpr std::uint32_t wordBits = 64;
    /// A group longer than needed: a power of two would make the same lane of all columns compete for a few
    /// lines of the cache.
    template<class T>
    using Column = std::array<T, numLanes + laneGroup>;

    Column<std::uint32_t> flags; ///< SndFlags.
    Column<std::uint32_t> marks; ///< RowMarks.
    Column<std::int32_t> priority;
    Column<float> distSqr;
    Column<float> multiplier;
    Column<std::uint32_t> stateTimeMs;
    Column<std::uint32_t> name; ///< Number of its file and owner name (NameIndex), or none.
    Column<std::uint32_t> serial; ///< Unique serial of its list entry; 0 if it is on no list.
    Column<float> x; ///< World position.
    Column<float> y; ///< The same.
    Column<float> z; ///< The same.
    Column<float> maxDistance;
    Column<std::int32_t> samplesLeft; ///< Left of the current file from the sound's playback position.
    Column<std::uint32_t> rateHz; ///< Rate of samplesLeft.
    Column<std::int32_t> countedSamples; ///< While it counts: the position in the file at which that ends.
    Column<SndBase*> sound; ///< Null for a free row.
    Column<ListID> list;
    Column<SoundReason> reason;
    /// A bit for each sound whose place is out of date.
    std::array<std::uint64_t, numLanes / wordBits> unplaced{};
    template<class Visit>
    void ForEachUnplaced(Visit visit) const
    {
        for (std::uint32_t word = 0; word < unplaced.size(); ++word) {
            for (std::uint64_t bits = unplaced[word]; bits != 0; bits &= bits - 1) {
                visit(word * wordBits + static_cast<std::uint32_t>(std::countr_zero(bits)));
            }
        }
    }

    std::uint32_t numUsed = 0; ///< Rows that belong to a sound.
    std::uint32_t end = 0; ///< From this lane on all rows are free. A multiple of laneGroup.
};

/// Refers to the row of a sound: its lane in all columns of its block. A default-constructed row refers to
/// none.
class HARMONET_INTERNAL_API SoundRow
{
public:
    SoundRow() = default;
    SoundRow(SoundBlock& newBlock, std::uint32_t newLane)
        : block(&newBlock)
        , lane(newLane)
    {
    }

    explicit operator bool() const { return block != nullptr; }
    bool operator==(const SoundRow& other) const = default;
    /// Sets all values of an unused row.
    void Reset(SndBase* sound) const;

    std::uint32_t& Flags() const { return block->flags[lane]; }
    std::uint32_t& Marks() const { return block->marks[lane]; }
    std::int32_t& Priority() const { return block->priority[lane]; }
    float& DistSqr() const { return block->distSqr[lane]; }
    float& Multiplier() const { return block->multiplier[lane]; }
    std::uint32_t& StateTimeMs() const { return block->stateTimeMs[lane]; }
    std::uint32_t& Name() const { return block->name[lane]; }
    std::uint32_t& Serial() const { return block->serial[lane]; }
    float& MaxDistance() const { return block->maxDistance[lane]; }
    std::int32_t& SamplesLeft() const { return block->samplesLeft[lane]; }
    std::uint32_t& RateHz() const { return block->rateHz[lane]; }
    std::int32_t& CountedSamples() const { return block->countedSamples[lane]; }
    ListID& List() const { return block->list[lane]; }
    SoundReason& Reason() const { return block->reason[lane]; }
    SndBase* GetSound() const { return block->sound[lane]; }
    Vector3 GetPlace() const { return {block->x[lane], block->y[lane], block->z[lane]}; }
    /// Whether GetPlace() is out of date.
    bool IsUnplaced() const
    {
        return (block->unplaced[lane / SoundBlock::wordBits] >> lane % SoundBlock::wordBits & 1) != 0;
    }
    /// Records that the node of the sound has moved.
    void NoteMove() const
    {
        Marks() |= RowMoved;
        block->unplaced[lane / SoundBlock::wordBits] |= std::uint64_t{1} << lane % SoundBlock::wordBits;
    }
    void SetPlace(const Vector3& place) const
    {
        block->x[lane] = place.x;
        block->y[lane] = place.y;
        block->z[lane] = place.z;
        SetMark(RowPlaced, true);
        block->unplaced[lane / SoundBlock::wordBits] &= ~(std::uint64_t{1} << lane % SoundBlock::wordBits);
    }

    bool HasAnyFlag(std::uint32_t mask) const { return (Flags() & mask) != 0; }
    bool HasMark(std::uint32_t mask) const { return (Marks() & mask) != 0; }
    void SetMark(std::uint32_t mask, bool on) const { Marks() = on ? Marks() | mask : Marks() & ~mask; }

    std::uint64_t GetWeightedKey() const
    {
        return ImportanceKey(Priority(), WeightDistance(DistSqr(), Multiplier()));
    }
    std::uint64_t GetPlainKey() const { return ImportanceKey(Priority(), DistSqr()); }
    void AddStateTime(unsigned long ms) const
    {
        StateTimeMs() = AddClamped(StateTimeMs(), static_cast<std::uint32_t>(ms));
    }
    float CalcDistSqr(const Vector3& listener) const
    {
        return Quon::CalcDistSqr(block->x[lane], block->y[lane], block->z[lane], listener);
    }
    /// Computes its distance and whether it is in range. The order of its list may be invalid afterwards.
    void Measure(const Vector3& listener) const
    {
        DistSqr() = CalcDistSqr(listener);
        Flags() = (Flags() & ~(FlagDistLTMax | FlagDistGTMax)) | CalcRange(DistSqr(), MaxDistance(), Marks());
    }

    std::int32_t CalcSamples(const UpdateStep& step) const { return Quon::CalcSamples(RateHz(), step.ms); }
    bool IsHeldBack() const { return (Flags() & (Flag3D | FlagInPause)) == (Flag3D | FlagInPause); }
    /// Whether counting is enough to advance this virtual sound by a step: it neither ends, nor reaches the
    /// end of its file, nor may have too little left.
    bool CanCount(const UpdateStep& step) const;
    /// Counts, if the current file or pass does not end meanwhile.
    bool CountSamples(std::int32_t samples) const
    {
        if (samples >= SamplesLeft()) {
            return false;
        }
        SamplesLeft() -= samples;
        return true;
    }

private:
    SoundBlock* block = nullptr;
    std::uint32_t lane = 0;
};

/// Rows are numbered through all blocks.
inline SoundRow RowAt(std::span<SoundBlock* const> blocks, std::uint32_t number)
{
    return {*blocks[number / SoundBlock::numLanes], number % SoundBlock::numLanes};
}

} // namespace Quon
