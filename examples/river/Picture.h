#pragma once

#include "harmonet/engine/Vector.h"

#include <string>
#include <vector>

namespace River
{

/// Where the listener stood, and where the line was heard from then, the nearest place first.
struct Step
{
    Quon::Vector3 listener;
    std::vector<Quon::Vector3> places;
};

/// The river and the steps as seen from above, X to the right and Z downwards, as an SVG document.
std::string Draw(const std::vector<Quon::Vector3>& river, const std::vector<Step>& steps);

} // namespace River
