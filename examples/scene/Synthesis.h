#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Scene
{

/// One second of all that is made here.
constexpr int rateHz = 22050;

using Pcm = std::vector<std::int16_t>;

/// A sound computed from a formula, so that the scene needs no recordings.
struct MadeSound
{
    const char* fileName;
    Pcm pcm;
};

/// All sounds of the scene that are made: those that run without end are seamless. The same at every call.
std::vector<MadeSound> MakeSounds();

} // namespace Scene
