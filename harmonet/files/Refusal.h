#pragma once

#include "harmonet/engine/Alloc.h"

namespace Quon
{

class SndFileHandle;
struct WaveFormatEx;

/// Why a file or a format does not play, as the end of a sentence that begins with its name: "holds 32-bit
/// float samples". For messages: it looks at what was refused once more, so that the readers need not know
/// how to say it. Task thread; lets FileEx through.
EngineString DescribeRefusal(SndFileHandle& handle);
/// The same for a block of memory.
EngineString DescribeRefusal(const WaveFormatEx* format, const void* data, unsigned long bytes);

} // namespace Quon
