#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/instances/SndPolyline.h"

#include <span>

namespace Quon
{

/// The candidate positions of a sound along a line in one update, returned nearest first. Up to 1000 are
/// stored in the object itself, which is created on the stack, so that an update does not allocate; only more
/// need the heap.
class CandidateList
{
public:
    void Add(const SndPolyline::SoundPoint& point);

    /// Ends adding. Afterwards TakeNearest() returns the candidates one by one, those at equal distance in
    /// the order in which they were added; null after the last.
    void Arrange();
    const SndPolyline::SoundPoint* TakeNearest();

private:
    struct Candidate
    {
        SndPolyline::SoundPoint point;
        int order;
    };

    static bool IsFarther(const Candidate& a, const Candidate& b);

    static constexpr int numInside = 1000;
    Candidate inside[numInside];
    EngineVector<Candidate> outside; ///< Holds all candidates once there are more.
    int count = 0;
    std::span<Candidate> left; ///< A heap with the nearest first.
};

} // namespace Quon
