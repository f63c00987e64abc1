#pragma once

#include <filesystem>

namespace Scene
{

/// Fills the folder from which the scene plays: the definitions and recordings of the example, and generated
/// wave files. Existing files are replaced. Throws the exceptions of std::filesystem and of the streams on
/// failure.
void FillSoundFolder(const std::filesystem::path& recordings, const std::filesystem::path& folder);

} // namespace Scene
