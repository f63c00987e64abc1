#pragma once

#include "examples/scene/SoundHistory.h"

#include <filesystem>

namespace Scene
{

/// Prints a line for each sound with its changes of state, and totals.
void PrintTable(const SoundHistory& history);

/// Writes the same as JSON: an array with id, file, and the changes with their times in seconds.
void WriteJson(const SoundHistory& history, const std::filesystem::path& path);

} // namespace Scene
