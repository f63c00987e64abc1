#pragma once

#include "PcmDecoder.h"
#include "harmonet/files/SndFile.h"

namespace DecodeBench
{

/// Returns the library's reader for a file in the data cache. `format` is the format that the cache would
/// have stored. Null if the reader rejects the file.
PcmDecoderPointer MakeOurDecoder(
    Bytes& file, Quon::SndFile::Snd_FileType type, const Quon::SoundFormat& format, void* nodeInfo);

} // namespace DecodeBench
