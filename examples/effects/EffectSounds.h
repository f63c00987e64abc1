#pragma once

#include <filesystem>

namespace EffectsExample
{

/// Renders the dry sound into files of the folder: as it is (dry.wav), through each of the eight insert
/// effects (chorus.wav and so on), and in six rooms (room-cave.wav and so on).
void RenderSounds(const std::filesystem::path& folder);

} // namespace EffectsExample
