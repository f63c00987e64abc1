#pragma once

#include "harmonet/engine/Vector.h"

#include <string>
#include <vector>

namespace River
{

/// The position of the listener, and the positions from which the line was heard, the nearest first.
struct Step
{
    Quon::Vector3 listener;
    std::vector<Quon::Vector3> places;
};

/// Returns an SVG document of the river and the steps from above, with X to the right and Z downwards.
std::string Draw(const std::vector<Quon::Vector3>& river, const std::vector<Step>& steps);

} // namespace River
