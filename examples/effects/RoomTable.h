#pragma once

#include <filesystem>

namespace EffectsExample
{

/// Renders a click in each of the 27 rooms, into a file of the folder, and prints how long it decays.
void PrintRoomTable(const std::filesystem::path& folder);

} // namespace EffectsExample
