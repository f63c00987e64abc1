#pragma once

#include "harmonet/files/SndNode.h"
#include "harmonet/files/mpeg/SndFileMP3.h"
#include "tests/files/WaveBuilder.h"
#include "tests/support/TempFolder.h"

#include <memory>

/// A stream of the folder streams/.
Bytes ReadStream(const std::string& name);
/// The first frames of a stream of the folder streams/syntax/. The plain names are MPEG-1 at 128 kbit/s and
/// 44.1 kHz, 417 bytes a frame.
Bytes ReadFrames(const std::string& name, int frameCount);
/// Such a frame with empty side information, which decodes to silence: 3 is mono, 0 stereo. Its main data
/// begin so many bytes ahead of it.
Bytes MakeSilentFrame(int mode = 3, int mainDataBegin = 0);
/// Little-endian 16-bit values.
std::vector<int> ToValues(const Bytes& pcm);
/// The same sound but for a step of rounding, as far as decoders may differ. `decoded` counts with every
/// `stride`th value.
void ExpectSameSound(
    const std::vector<int>& decoded, const std::vector<int>& expected, std::size_t stride = 1);

/// A reader of a stream in memory, as in the data cache.
class MemoryStream
{
public:
    explicit MemoryStream(const Bytes& newBytes, bool byStandard = false);
    ~MemoryStream();

    /// Null if the reader refused the stream.
    Quon::SndFileMP3* Get() const { return file.get(); }

    /// The values of all channels that one read gives. It is watched: it may write no byte
    /// beyond the room that it asks for by the format before the call.
    std::vector<int> ReadOnce(int samples);
    /// Reads on to the end in calls of so many sample frames.
    std::vector<int> ReadAll(int samplesPerCall = 1152);

private:
    Bytes bytes;
    Quon::SndNode node;
    std::unique_ptr<Quon::SndFileMP3> file;
};

/// All that a stream decodes to; nothing if the reader refuses it.
std::vector<int> DecodeAll(const Bytes& stream, int samplesPerCall = 1152, bool byStandard = false);
