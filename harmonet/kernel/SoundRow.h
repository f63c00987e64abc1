#pragma once

#include "harmonet/engine/Vector.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/Importance.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace Quon
{

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

/// The kernel's marks of a sound, besides its flags.
enum RowMarks : std::uint16_t
{
    RowMoved = 0x0001, ///< Its node has moved since the last update.
    RowPlaceKnown = 0x0002, ///< SoundRow::place is up to date.
    RowCutout = 0x0004, ///< It is not audible beyond its maximum distance.
    RowCounted = 0x0008, ///< SoundRow::samplesLeft counts, and its file lags.
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
    std::uint32_t minEmulationMs; ///< A virtual sound with less than this plus the step left ends.
    Vector3 listener;
    bool listenerMoved;
    bool onlyCounts = false; ///< Counting is enough to advance all virtual sounds.
    bool anyMoved = false; ///< One of them has moved.
};

/// The data of a sound that a full update reads and writes, in one cache line. The rows are stored together
/// (SoundRows); the sound object holds the rest and refers to its row.
struct alignas(64) SoundRow : SoundRowHead
{
    std::int32_t priority = 0;
    float distSqr = 0.0F;
    float multiplier = 1.0F;
    std::uint32_t stateTimeMs = 1000;
    std::uint32_t nameNumber = 0xFFFFFFFF; ///< Number of its file and owner name (NameIndex), or none.
    std::uint32_t serial = 0; ///< Unique serial of its list entry; 0 if it is on no list.
    ListID list = ListID::None;
    SoundReason reason = SoundReason::None;
    std::uint16_t marks = RowMoved;
    Vector3 place; ///< World position.
    float maxDistance = 0.0F;
    std::int32_t samplesLeft = 0; ///< Left of the current file from the sound's playback position.
    std::uint32_t rateHz = 0; ///< Rate of samplesLeft.
    SndBase* sound = nullptr; ///< Null for a free row.

    bool HasAnyFlag(std::uint32_t mask) const { return (flags & mask) != 0; }
    bool HasMark(std::uint16_t mask) const { return (marks & mask) != 0; }
    void SetMark(std::uint16_t mask, bool on)
    {
        marks = static_cast<std::uint16_t>(on ? marks | mask : marks & ~mask);
    }

    std::uint64_t GetKey() const
    {
        return ImportanceKey(
            priority, SndBase::useMultiplier ? WeightDistance(distSqr, multiplier) : distSqr);
    }

    void AddStateTime(unsigned long ms)
    {
        const std::uint64_t sum = stateTimeMs + std::uint64_t{ms};
        constexpr std::uint64_t maximum = std::numeric_limits<std::uint32_t>::max();
        stateTimeMs = static_cast<std::uint32_t>(sum < maximum ? sum : maximum);
    }

    void SetPlace(const Vector3& newPlace)
    {
        place = newPlace;
        SetMark(RowPlaceKnown | RowPlaced, true);
    }

    float CalcDistSqr(const Vector3& listener) const
    {
        const float x = place.x - listener.x;
        const float y = place.y - listener.y;
        const float z = place.z - listener.z;
        const float squared = x * x + y * y + z * z;
        return std::isnan(squared) ? std::numeric_limits<float>::infinity() : squared;
    }

    /// Computes its distance and whether it is in range. The order of its list may be invalid afterwards.
    void Measure(const Vector3& listener)
    {
        distSqr = CalcDistSqr(listener);
        // Factor on the squared distance: about 1 % of the distance itself. Between the two limits neither
        // flag is set, so that a sound at the edge does not toggle in each update.
        constexpr float outerBand = 1.02F;
        flags &= ~(FlagDistLTMax | FlagDistGTMax);
        const float maxDistSqr = maxDistance * maxDistance;
        if (!HasMark(RowCutout) || maxDistSqr > distSqr) {
            flags |= FlagDistLTMax;
        }
        else if (maxDistSqr * outerBand < distSqr) {
            flags |= FlagDistGTMax;
        }
    }

    std::uint32_t CalcSamples(const UpdateStep& step) const { return rateHz * step.ms / 1000U; }

    bool IsUnplaced() const { return HasAnyFlag(Flag3D) && !HasMark(RowPlaceKnown); }
    bool IsHeldBack() const { return (flags & (Flag3D | FlagInPause)) == (Flag3D | FlagInPause); }

    /// Whether counting is enough to advance this virtual sound by a step: it neither ends, nor reaches the
    /// end of its file, nor may have too little left.
    bool CanCount(const UpdateStep& step) const
    {
        if (!HasMark(RowCounted) || HasAnyFlag(FlagPolyline | FlagLooping)) {
            return HasMark(RowCounted) && !HasAnyFlag(FlagPolyline);
        }
        const std::uint64_t leftMs = std::uint64_t{1000} * static_cast<std::uint32_t>(samplesLeft);
        const std::uint64_t neededMs = std::uint64_t{step.minEmulationMs} + step.ms + 1;
        return !HasMark(RowOwnRate) && leftMs >= neededMs * rateHz &&
            CalcSamples(step) < static_cast<std::uint32_t>(samplesLeft);
    }
    bool CountSamples(std::uint32_t samples)
    {
        if (samples >= static_cast<std::uint32_t>(samplesLeft)) {
            return false;
        }
        samplesLeft -= static_cast<std::int32_t>(samples);
        return true;
    }
};
static_assert(sizeof(SoundRow) == 64);

} // namespace Quon
