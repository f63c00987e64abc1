#pragma once

#include <filesystem>

namespace EffectsExample
{

/// Renders a steady tone with many positions, distances, cones and gains to a file in the folder. Prints the
/// level by formula and the rendered level of each.
void PrintPlacementTable(const std::filesystem::path& folder);

} // namespace EffectsExample
