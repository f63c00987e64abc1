#pragma once

#include "harmonet/Export.h"

namespace Quon
{

class SndFileHandle;
struct WaveFormatEx;

/// Detect the type of a file or a block of memory, as a value of SndFile::Snd_FileType, before creating a
/// reader. They change only the file's seek position. Task thread.

/// Returns FileWav for PCM and FileAdpcm for ADPCM, by the first "fmt " chunk of a wave file; FileNone for
/// anything else. May throw FileEx.
HARMONET_INTERNAL_API int ProbeWave(SndFileHandle* handle);

/// The same by the format's tag alone; FileNone for null.
int ProbeFormat(const WaveFormatEx* format);

/// The same for a tag alone.
int ProbeTag(int formatTag);

} // namespace Quon
