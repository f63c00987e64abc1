#pragma once

#include "harmonet/Export.h"

namespace Quon
{

class SndFileHandle;
struct WaveFormatEx;

/// What a file or a block of memory is, as a value of SndFile::Snd_FileType, told before any reader exists.
/// Both change nothing but the file's seek position. Task thread.

/// FileWav for PCM and FileAdpcm for ADPCM by the first "fmt " chunk of a wave file; FileNone for anything
/// else. Lets FileEx through.
HARMONET_INTERNAL_API int ProbeWave(SndFileHandle* handle);

/// The same by the format's tag alone; null is FileNone.
int ProbeFormat(const WaveFormatEx* format);

/// The same for a tag by itself.
int ProbeTag(int formatTag);

} // namespace Quon
