// A sound along a line: its geometry, and the settings that it forwards to its sources.

#include "harmonet/instances/SndPolyline.h"

#include "harmonet/definitions/SoundResource.h"
#include "harmonet/instances/Axes.h"
#include "harmonet/instances/FastLength.h"
#include "harmonet/kernel/SndKernel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace Quon
{

namespace
{

constexpr float otherGain = 0.5F; // Of all sources but the first.
constexpr float minDistanceSpacing = 0.5F;
constexpr float maxDistanceSpacing = 0.01F;
constexpr float minDistanceReach = 30.0F; // Of a sound without a cutout.
constexpr float infinity = std::numeric_limits<float>::infinity();

float CalcCosine(float degrees)
{
    return static_cast<float>(std::cos(std::numbers::pi * static_cast<double>(degrees) / 180.0));
}

} // namespace

SndPolyline::SndPolyline() = default;

SndPolyline::SndPolyline(Snd3D& model)
    : Snd3D(model)
{
}

SndPolyline::~SndPolyline()
{
    ForEachSource([](Snd3D& source, int) { delete &source; });
    // Called here: an observer may query the line's positions.
    Done();
    sourceFX.Clear();
}

bool SndPolyline::Init(const Vector3* points, int numPoints, unsigned int* ids, int numIds, float minAngle)
{
    cosMinAngle = CalcCosine(minAngle);
    InitSegments(points, numPoints);
    numActive = 0;
    activePoints.resize(numIds > 1 ? static_cast<std::size_t>(numIds) : 0);
    soundIDs.assign(ids, ids + numIds);
    // From here on nothing throws, and this object owns the block.
    Alloc::Delete(ids);
    SndPolyline::SetGain(GetGain());
    AddFlags(FlagPolyline | FlagLooping | FlagNotMovable);
    CalcReach();
    return true;
}

void SndPolyline::InitSegments(const Vector3* points, int numPoints)
{
    segments.clear();
    totalLength = 0.0F;
    boundsMin = {infinity, infinity, infinity};
    boundsMax = -boundsMin;
    const Vector3* end = points + numPoints;
    const Vector3* first = std::find_if(points, end, IsFinite);
    if (first == end) {
        return;
    }
    segments.reserve(static_cast<std::size_t>(std::max<std::ptrdiff_t>(end - first - 1, 1)));
    IncludeInBounds(*first);
    const Vector3* kept = first; // End of the last segment.
    const Vector3* before = first; // The point before the current one.
    const Vector3* second = nullptr;
    for (const Vector3* point = first + 1; point != end; ++point) {
        if (!IsFinite(*point)) {
            continue;
        }
        if (!second) {
            second = point;
        }
        const Vector3 way = *point - *kept;
        const float length = FastLength(way);
        if (length >= shortest && length < infinity) {
            AddSegment(*before, {way.x / length, way.y / length, way.z / length}, length);
            IncludeInBounds(*point);
            kept = point;
        }
        before = point;
    }
    if (segments.empty()) {
        const Vector3 way = second ? *second - *first : Vector3();
        const bool isMeasured = FastLength(way) < shortest;
        segments.push_back({*first, isMeasured ? way * (1.0F / shortest) : Vector3(), shortest});
    }
}

void SndPolyline::AddSegment(const Vector3& start, const Vector3& direction, float length)
{
    segments.push_back({start, direction, length});
    totalLength += length;
}

void SndPolyline::IncludeInBounds(const Vector3& point)
{
    boundsMin = {
        std::min(boundsMin.x, point.x), std::min(boundsMin.y, point.y), std::min(boundsMin.z, point.z)};
    boundsMax = {
        std::max(boundsMax.x, point.x), std::max(boundsMax.y, point.y), std::max(boundsMax.z, point.z)};
}

// NaN counts as 0. Without a spacing each segment has one candidate, its nearest point.
void SndPolyline::CalcReach()
{
    float nearest = std::isnan(GetMinDistance()) ? 0.0F : GetMinDistance();
    float farthest = std::isnan(GetMaxDistance()) ? 0.0F : GetMaxDistance();
    if (GetMinDistance() == 0.0F && GetMaxDistance() == 0.0F && !GetCutout()) {
        nearest = defaultMinDistance;
        farthest = defaultMaxDistance;
    }
    pointSpacing = std::max(nearest * minDistanceSpacing, farthest * maxDistanceSpacing);
    range = GetCutout() ? farthest : std::max(nearest * minDistanceReach, farthest);
    const int numSegments = static_cast<int>(segments.size());
    const double along = pointSpacing > 0.0F ? static_cast<double>(totalLength / pointSpacing) : 0.0;
    const int maximum = std::numeric_limits<int>::max() - numSegments;
    maxPoints = numSegments + (along < maximum ? static_cast<int>(along) : maximum);
}

Snd3D* SndPolyline::FindSource(int index) const
{
    return static_cast<Snd3D*>(theKernel->FindSound(static_cast<int>(GetSourceID(index))));
}

/// From the last of the range to its first. Sources that no longer exist are removed on the way.
template<class Visit>
void SndPolyline::ForEachSource(int first, int last, Visit visit)
{
    if (!theKernel) {
        return;
    }
    for (int i = std::min(last, GetNumSounds()) - 1; i >= first; --i) {
        if (Snd3D* source = FindSource(i)) {
            visit(*source, i);
        }
        else {
            RemoveSnd(i);
        }
    }
}

void SndPolyline::RemoveSnd(int index)
{
    if (index >= 0 && index < GetNumSounds()) {
        soundIDs.erase(soundIDs.begin() + index);
    }
}

bool SndPolyline::IsSourceInNotification() const
{
    for (int i = 0; theKernel && i < GetNumSounds(); ++i) {
        const Snd3D* source = FindSource(i);
        if (source && source->IsInNotification()) {
            return true;
        }
    }
    return false;
}

void SndPolyline::ShareFX()
{
    const SndFXList shared = GetThisFXList().Duplicate();
    ForEachSource([&](Snd3D& source, int) {
        source.SetThisFXList(shared);
        source.AddFlags(FlagSharedFXList);
    });
    sourceFX.Clear();
    sourceFX = shared;
}

void SndPolyline::SetMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout)
{
    if (!theKernel) {
        return;
    }
    Snd3D::SetMinMaxDistance(newMinDistance, newMaxDistance, newCutout);
    ForEachSource(
        [&](Snd3D& source, int) { source.SetMinMaxDistance(newMinDistance, newMaxDistance, newCutout); });
    CalcReach();
}

void SndPolyline::SetGain(float newGain)
{
    if (!theKernel) {
        return;
    }
    ForEachSource(
        [&](Snd3D& source, int rank) { source.SetGain(rank == 0 ? newGain : newGain * otherGain); });
    SndBase::SetGain(newGain);
}

void SndPolyline::SetPaused(bool on)
{
    if (!theKernel) {
        return;
    }
    ForEachSource([on](Snd3D& source, int) { source.SetPaused(on); });
    SndBase::SetPaused(on);
}

void SndPolyline::SetLowPass(float gainHF)
{
    if (!theKernel) {
        return;
    }
    ForEachSource([gainHF](Snd3D& source, int) { source.SetLowPass(gainHF); });
    SndBase::SetLowPass(gainHF);
}

void SndPolyline::SetPriority(int newPriority)
{
    if (!theKernel) {
        return;
    }
    ForEachSource([&](Snd3D& source, int) { source.SetPriority(newPriority); });
    Snd3D::SetPriority(newPriority);
}

void SndPolyline::SetDelay(int ms)
{
    if (!theKernel) {
        return;
    }
    ForEachSource([&](Snd3D& source, int) { source.SetDelay(ms); });
    Snd3D::SetDelay(ms);
}

float SndPolyline::CalcLevel(const Vector3* listener) const
{
    bool isPlaced = false;
    float level = 0.0F;
    for (int i = 0; theKernel && i < GetNumSounds(); ++i) {
        const Snd3D* source = FindSource(i);
        if (source && !source->GetInPause()) {
            level = std::max(level, source->CalcLevel(listener));
            isPlaced = true;
        }
    }
    return isPlaced ? level : GetOutputGain();
}

bool SndPolyline::SetFrequency(unsigned long hz)
{
    if (!theKernel) {
        return false;
    }
    bool isTaken = true;
    ForEachSource([&](Snd3D& source, int) { isTaken = source.SetFrequency(hz) && isTaken; });
    return Snd3D::SetFrequency(hz) && isTaken;
}

void SndPolyline::BindAxisToDirection(int newAxis)
{
    ForEachSource([&](Snd3D& source, int) { source.BindAxisToDirection(newAxis); });
}

bool SndPolyline::SndUpdate(float, const Vector3& listener, bool listenerMoved)
{
    // The line does not move: unless the listener has moved, nothing has changed.
    if (!listenerMoved) {
        return true;
    }
    const Vector3 reach{range, range, range};
    listenerMin = listener - reach;
    listenerMax = listener + reach;
    if (IsFinite(listener) && IsInReach()) {
        DistribSounds(listener);
    }
    else {
        PauseFrom(0);
    }
    return !soundIDs.empty();
}

bool SndPolyline::IsInReach() const
{
    return listenerMin.x <= boundsMax.x && listenerMax.x >= boundsMin.x && listenerMin.y <= boundsMax.y &&
        listenerMax.y >= boundsMin.y && listenerMin.z <= boundsMax.z && listenerMax.z >= boundsMin.z;
}

// Pauses the placed sources from that index on.
void SndPolyline::PauseFrom(int first)
{
    ForEachSource(first, numActive, [](Snd3D& source, int) { source.SetInPause(true); });
    numActive = first;
}

void SndPolyline::PlaceSources(int placed)
{
    PauseFrom(placed);
    ForEachSource(0, placed, [this](Snd3D& source, int rank) {
        source.SetPosition(activePoints[static_cast<std::size_t>(rank)].position);
        source.SetInPause(false);
    });
}

int SndPolyline::GetPlaces(Vector3* places, int maxPlaces) const
{
    int count = 0;
    for (int i = 0; theKernel && i < GetNumSounds() && count < maxPlaces; ++i) {
        const Snd3D* source = FindSource(i);
        if (source && !source->GetInPause()) {
            places[count++] = source->GetGlobalPosition();
        }
    }
    return count;
}

} // namespace Quon
