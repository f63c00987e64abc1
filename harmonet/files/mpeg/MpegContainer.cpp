// The container of an MPEG stream: the probe and the RIFF/WAVE parser.

#include "harmonet/files/RiffWalk.h"
#include "harmonet/files/SndFileHandle.h"
#include "harmonet/files/mpeg/FrameParser.h"
#include "harmonet/files/mpeg/SndFileMP3.h"

namespace Quon
{

namespace
{

constexpr std::uint32_t maxMpegFormatBytes = 4096;
constexpr int unknownSamples = -1;

} // namespace

int ProbeMpeg(SndFileHandle* handle)
{
    return ProbeMpeg(handle, FindFormatTag(*handle));
}

int ProbeMpeg(SndFileHandle* handle, int formatTag)
{
    if (formatTag == waveTagMpegLayer3) {
        return SndFile::FileMP3;
    }
    unsigned char bytes[frameHeaderBytes];
    if (handle->ReadAt(bytes, frameHeaderBytes, 0) < frameHeaderBytes) {
        return SndFile::FileNone;
    }
    const unsigned headerBits = LoadFrameHeader(bytes);
    FrameHeader header = SplitFrameHeader(headerBits);
    // The forbidden bitrate is accepted here and handled when the file is opened.
    if (header.bitrateIndex == 15) {
        header.bitrateIndex = 1;
    }
    return HasFrameSync(headerBits) && IsPlayable(header) ? SndFile::FileMP3 : SndFile::FileNone;
}

// A failure is not an error: the stream is then read from the start of the file, or from data that precede
// their format, and counted.
bool SndFileMP3::ParseContainer()
{
    fileType = FileNone;
    dataOffset = 0;
    bytesPerSample = 2;
    soundSamples = unknownSamples;
    int factCount = unknownSamples;
    bool hasData = false;
    RiffWalk walk(*handle);
    while (!hasData && walk.Next()) {
        if (walk.Is("fmt ") && fileType != FileMP3) {
            TakeContainerFormat(walk.GetSize(), walk.ReadFormat());
        }
        else if (walk.Is("fact")) {
            factCount = static_cast<int>(walk.ReadNumber());
        }
        else if (walk.Is("data")) {
            dataOffset = static_cast<std::uint32_t>(walk.GetContentOffset());
            hasData = true;
        }
    }
    if (!hasData || fileType != FileMP3) {
        fileType = FileNone;
        return false;
    }
    soundSamples = factCount;
    return true;
}

void SndFileMP3::TakeContainerFormat(unsigned int chunkBytes, const WaveFormatEx& format)
{
    const bool fits = chunkBytes >= RiffWalk::minFormatBytes && chunkBytes <= maxMpegFormatBytes;
    if (fits && format.formatTag == waveTagMpegLayer3) {
        fileType = FileMP3;
        bytesPerSample = format.bitsPerSample / 8 == 1 ? 1 : 2;
    }
}

} // namespace Quon
