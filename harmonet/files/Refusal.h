#pragma once

#include "harmonet/engine/Alloc.h"

namespace Quon
{

class SndFileHandle;
struct WaveFormatEx;

/// Describes why a file or a format does not play, as the predicate of a sentence about it: "holds 32-bit
/// float samples". For messages: it examines the refused file again, so that the readers need not describe
/// their refusals. Task thread; may throw FileEx.
EngineString DescribeRefusal(SndFileHandle& handle);
/// The same for a block of memory.
EngineString DescribeRefusal(const WaveFormatEx* format, const void* data, unsigned long bytes);

} // namespace Quon
