#pragma once

#include "harmonet/kernel/SoundState.h"

#include <string>

namespace Trace
{

/// How people call it: the definition or else the file, and what kind of thing it is where that is not plain.
std::string NameOf(const Quon::SoundState& state);
/// Such as "positional" or "music".
const char* DescribeKind(Quon::SoundKind kind);
/// Such as "heard" or "virtual".
const char* NameOfPhase(const Quon::SoundState& state);
/// Phase and reason, such as "virtual: like sounds are nearer".
std::string DescribeState(const Quon::SoundState& state);

/// Why a sound ended before its time; null where it came to its end or was stopped.
const char* DescribeEnd(const Quon::SoundState& state);

/// The sound system's clock without its wrap-around.
class Clock
{
public:
    Clock();

    /// Milliseconds since this object was made.
    std::int64_t GetMs();

private:
    std::uint32_t last;
    std::int64_t sum = 0;
};

} // namespace Trace
