#pragma once

#include "harmonet/kernel/SoundState.h"

#include <string>

namespace Trace
{

/// Returns the name of the definition or of the file, and the kind of sound where the name alone is
/// ambiguous.
std::string NameOf(const Quon::SoundState& state);
/// For example "positional" or "music".
const char* DescribeKind(Quon::SoundKind kind);
/// For example "heard" or "virtual".
const char* NameOfPhase(const Quon::SoundState& state);
/// Returns the phase and the reason, for example "virtual: duplicates of it are nearer".
std::string DescribeState(const Quon::SoundState& state);

/// Returns why a sound ended early; null if it reached its end or was stopped.
const char* DescribeEnd(const Quon::SoundState& state);

/// The sound system's clock without wrap-around.
class Clock
{
public:
    Clock();

    /// Returns the milliseconds since construction.
    std::int64_t GetMs();

private:
    std::uint32_t last;
    std::int64_t sum = 0;
};

} // namespace Trace
