#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Scene
{

/// The sample rate of all generated sounds.
constexpr int rateHz = 22050;

using Pcm = std::vector<std::int16_t>;

/// A sound computed from a formula, so that the scene needs no recordings.
struct MadeSound
{
    const char* fileName;
    Pcm pcm;
};

/// Returns all generated sounds of the scene. The loops are seamless. Every call returns the same.
std::vector<MadeSound> MakeSounds();

} // namespace Scene
