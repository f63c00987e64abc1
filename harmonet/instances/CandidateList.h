#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/instances/SndPolyline.h"

#include <span>

namespace Quon
{

/// The places that a sound along a line could take in one update, given out from the nearest on. Up to 1000
/// stand in the object itself, which is made on the stack, so that an update allocates nothing; only more
/// take memory from the heap.
class CandidateList
{
public:
    void Add(const SndPolyline::SoundPoint& point);

    /// Ends the adding. Then TakeNearest() gives one after the other, those at the same distance in the order
    /// in which they were added; null behind the last.
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
    EngineVector<Candidate> outside; ///< Takes all of them once there are more.
    int count = 0;
    std::span<Candidate> left; ///< A heap with the nearest in front.
};

} // namespace Quon
