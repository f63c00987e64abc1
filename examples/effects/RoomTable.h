#pragma once

#include <filesystem>

namespace EffectsExample
{

/// Renders a click in each of the 27 rooms to a file in the folder, and prints how long it decays.
void PrintRoomTable(const std::filesystem::path& folder);

} // namespace EffectsExample
