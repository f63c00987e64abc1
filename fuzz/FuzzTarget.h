#pragma once

#include <span>
#include <stdexcept>
#include <string>

/// What the fuzzers and the replay of their finds have in common: one function for each target, which takes
/// any bytes and throws std::logic_error when something that has to hold does not.

namespace Quon
{

using FuzzBytes = std::span<const unsigned char>;

struct FuzzTarget
{
    /// Also the name of its folder of small inputs, in fuzz/corpus/.
    const char* name;
    void (*run)(FuzzBytes bytes);
};

/// A sound file: it gives the same PCM however it is read.
void FuzzSoundFile(FuzzBytes bytes);
/// The text of a sound definition, which is loaded and played.
void FuzzDefinition(FuzzBytes bytes);
/// Operations on effect lists, beside a plain model.
void FuzzEffectList(FuzzBytes bytes);
/// A text for the block reader, which is read whole, written anew, and read as the bytes say.
void FuzzBlockReader(FuzzBytes bytes);
/// A file of options, a command line and lists.
void FuzzOptions(FuzzBytes bytes);
/// A game that does what the bytes say.
void FuzzPlay(FuzzBytes bytes);

inline constexpr FuzzTarget fuzzTargets[] = {
    {"sound_file", FuzzSoundFile},
    {"definition", FuzzDefinition},
    {"effect_list", FuzzEffectList},
    {"block_reader", FuzzBlockReader},
    {"options", FuzzOptions},
    {"play", FuzzPlay},
};

inline void Require(bool holds, const char* what)
{
    if (!holds) {
        throw std::logic_error(what);
    }
}

} // namespace Quon
