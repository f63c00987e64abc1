#include "harmonet/instances/CandidateList.h"

#include <algorithm>
#include <iterator>

namespace Quon
{

void CandidateList::Add(const SndPolyline::SoundPoint& point)
{
    const Candidate candidate{point, count};
    if (count < numInside) {
        inside[count] = candidate;
    }
    else {
        if (outside.empty()) {
            outside.assign(std::begin(inside), std::end(inside));
        }
        outside.push_back(candidate);
    }
    ++count;
}

// The selection rarely visits all candidates, so a heap is cheaper than a sort.
void CandidateList::Arrange()
{
    left = outside.empty() ? std::span(inside, static_cast<std::size_t>(count)) : std::span(outside);
    std::make_heap(left.begin(), left.end(), IsFarther);
}

const SndPolyline::SoundPoint* CandidateList::TakeNearest()
{
    if (left.empty()) {
        return nullptr;
    }
    std::pop_heap(left.begin(), left.end(), IsFarther);
    const Candidate& nearest = left.back();
    left = left.first(left.size() - 1);
    return &nearest.point;
}

bool CandidateList::IsFarther(const Candidate& a, const Candidate& b)
{
    const int order = SndPolyline::CompDist(&a.point, &b.point);
    return order != 0 ? order > 0 : a.order > b.order;
}

} // namespace Quon
