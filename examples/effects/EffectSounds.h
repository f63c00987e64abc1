#pragma once

#include <filesystem>

namespace EffectsExample
{

/// Renders the dry sound to files in the folder: unchanged (dry.wav), through each of the eight insert
/// effects (chorus.wav and so on), and in six rooms (room-cave.wav and so on).
void RenderSounds(const std::filesystem::path& folder);

} // namespace EffectsExample
