#pragma once

#include <filesystem>

namespace Scene
{

/// Lays the folder out that the scene plays from: the definitions and recordings that come with the example,
/// and wave files that are made here. What is there already is written anew. Throws what std::filesystem and
/// the streams throw when the disk refuses.
void FillSoundFolder(const std::filesystem::path& recordings, const std::filesystem::path& folder);

} // namespace Scene
