#pragma once

#include <filesystem>

namespace EffectsExample
{

/// Plays a steady tone at many places, with all that a place can be given, into a file of the folder. Prints
/// for each the level that the formula gives and the one that was rendered.
void PrintPlacementTable(const std::filesystem::path& folder);

} // namespace EffectsExample
