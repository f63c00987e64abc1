#pragma once

#include "PcmDecoder.h"
#include "harmonet/files/SndFile.h"

namespace DecodeBench
{

/// The library's reader of a file that lies in the data cache. `format` is what the cache would know of it;
/// null if the reader does not take it.
PcmDecoderPointer MakeOurDecoder(
    Bytes& file, Quon::SndFile::Snd_FileType type, const Quon::SoundFormat& format, void* nodeInfo);

} // namespace DecodeBench
