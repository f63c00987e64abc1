// Distributes the sources of a sound along a line for a listener.

#include "harmonet/instances/CandidateList.h"
#include "harmonet/instances/FastLength.h"
#include "harmonet/instances/SndPolyline.h"
#include "harmonet/kernel/SndKernel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Quon
{

namespace
{

using Segment = SndPolyline::Segment;
using SoundPoint = SndPolyline::SoundPoint;

// Candidates are dense near the listener and sparse far from it.
constexpr float spacingByDistance = 0.2F;

Vector3 PointAlong(const Segment& segment, float along)
{
    return segment.start + segment.direction * along;
}

/// The number of candidates left. One is reserved for the nearest point of each remaining segment, so that a
/// long first segment does not use up all.
struct Budget
{
    int points;
    int pieces;

    bool AllowsMore() const { return points > pieces; }
};

/// An iteration along one segment for further candidates.
struct PieceWalk
{
    Segment& segment;
    const Vector3& listener;
    float maxDistance;
    CandidateList& candidates;
    Budget& budget;

    void Walk(float from, float step)
    {
        float last = from;
        for (int k = 1; budget.AllowsMore(); ++k) {
            const float along = from + static_cast<float>(k) * step;
            // For large coordinates a step can be too small to advance.
            if (along == last || !(along >= 0.0F && along < segment.length)) {
                return;
            }
            last = along;
            const Vector3 position = PointAlong(segment, along);
            const float distance = FastLength(position - listener);
            if (!(distance <= maxDistance)) {
                return;
            }
            candidates.Add({&segment, position, distance});
            --budget.points;
        }
    }
};

} // namespace

int SndPolyline::CompDist(const void* left, const void* right)
{
    const float a = static_cast<const SoundPoint*>(left)->distance;
    const float b = static_cast<const SoundPoint*>(right)->distance;
    return a < b ? -1 : a > b ? 1 : 0;
}

// Every point of the segment is within its length of its start.
bool SndPolyline::CanReach(const Segment& segment) const
{
    const Vector3& start = segment.start;
    const float length = segment.length;
    return start.x >= listenerMin.x - length && start.x <= listenerMax.x + length &&
        start.y >= listenerMin.y - length && start.y <= listenerMax.y + length &&
        start.z >= listenerMin.z - length && start.z <= listenerMax.z + length;
}

float SndPolyline::CalcClosestPoint(Segment* segment, const Vector3& listener, Vector3& closest, float& along)
{
    if (!CanReach(*segment)) {
        // For large numbers the next float is farther away than that.
        return std::max(range + 1.0F, std::nextafter(range, std::numeric_limits<float>::infinity()));
    }
    const float place = Dot(listener - segment->start, segment->direction);
    along = place <= 0.0F ? 0.0F : place >= segment->length ? segment->length : place;
    closest = PointAlong(*segment, along);
    return FastLength(closest - listener);
}

void SndPolyline::DistribSounds(const Vector3& listener)
{
    if (!theKernel || soundIDs.empty()) {
        return;
    }
    if (soundIDs.size() == 1) {
        DistribOne(listener);
    }
    else {
        DistribSeveral(listener);
    }
}

void SndPolyline::DistribOne(const Vector3& listener)
{
    Snd3D* source = FindSource(0);
    if (!source) {
        RemoveSnd(0);
        return;
    }
    float nearestDistance = std::numeric_limits<float>::infinity();
    Vector3 nearest;
    for (Segment& segment : segments) {
        Vector3 closest;
        float along = 0.0F;
        const float distance = CalcClosestPoint(&segment, listener, closest, along);
        if (distance < nearestDistance) {
            nearestDistance = distance;
            nearest = closest;
        }
    }
    const bool isHeard = nearestDistance < range;
    if (isHeard) {
        source->SetPosition(nearest);
    }
    source->SetInPause(!isHeard);
}

void SndPolyline::DistribSeveral(const Vector3& listener)
{
    CandidateList candidates;
    CollectCandidates(listener, candidates);
    candidates.Arrange();
    PlaceSources(SelectPoints(listener, candidates));
}

void SndPolyline::CollectCandidates(const Vector3& listener, CandidateList& candidates)
{
    Budget budget{maxPoints, static_cast<int>(segments.size())};
    for (Segment& segment : segments) {
        Vector3 closest;
        float along = 0.0F;
        const float distance = CalcClosestPoint(&segment, listener, closest, along);
        if (distance <= range) {
            candidates.Add({&segment, closest, distance});
            --budget.points;
            const float spacing = std::max(distance * spacingByDistance, pointSpacing);
            PieceWalk walk{segment, listener, GetMaxDistance(), candidates, budget};
            if (spacing > shortest) {
                walk.Walk(along, spacing);
                walk.Walk(along, -spacing);
            }
        }
        --budget.pieces;
    }
}

// Returns how many points were chosen.
int SndPolyline::SelectPoints(const Vector3& listener, CandidateList& candidates)
{
    int placed = 0;
    while (placed < GetNumSounds()) {
        const SoundPoint* candidate = candidates.TakeNearest();
        if (!candidate) {
            break;
        }
        if (IsApart(*candidate, placed, listener)) {
            activePoints[static_cast<std::size_t>(placed++)] = *candidate;
        }
    }
    return placed;
}

// Whether a candidate's direction differs from those of all placed points. For a listener on the line there
// is no direction.
bool SndPolyline::IsApart(const SoundPoint& candidate, int placed, const Vector3& listener) const
{
    const Vector3 direction = candidate.position - listener;
    for (int i = 0; i < placed; ++i) {
        const SoundPoint& other = activePoints[static_cast<std::size_t>(i)];
        if (candidate.distance <= shortest || other.distance <= shortest) {
            return false;
        }
        const float cosine =
            Dot(other.position - listener, direction) / (other.distance * candidate.distance);
        if (!(cosine <= cosMinAngle)) {
            return false;
        }
    }
    return true;
}

} // namespace Quon
