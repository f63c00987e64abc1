#pragma once

#include <span>
#include <stdexcept>
#include <string>

/// The interface between the targets, the fuzzers and the replay test: one function for each target. It
/// accepts any bytes and throws std::logic_error if a requirement is violated.

namespace Quon
{

using FuzzBytes = std::span<const unsigned char>;

struct FuzzTarget
{
    /// Also the name of its folder of inputs in fuzz/corpus/.
    const char* name;
    void (*run)(FuzzBytes bytes);
};

/// A sound file, which must decode to the same PCM however it is read.
void FuzzSoundFile(FuzzBytes bytes);
/// The text of a sound definition, which is loaded and played.
void FuzzDefinition(FuzzBytes bytes);
/// Operations on effect lists, compared with a simple model.
void FuzzEffectList(FuzzBytes bytes);
/// A text for the block reader: read completely, written back, and read with calls that the bytes select.
void FuzzBlockReader(FuzzBytes bytes);
/// An options file, a command line and lists.
void FuzzOptions(FuzzBytes bytes);
/// A game that the bytes control.
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
