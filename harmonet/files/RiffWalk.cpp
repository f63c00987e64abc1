#include "harmonet/files/RiffWalk.h"

#include "harmonet/files/LittleEndian.h"
#include "harmonet/files/SndFileHandle.h"

#include <algorithm>
#include <cstring>

namespace Quon
{

RiffWalk::RiffWalk(SndFileHandle& newHandle)
    : handle(newHandle)
    , fileBytes(newHandle.GetFile().Size())
{
    unsigned char head[riffHeadBytes];
    isWave = handle.ReadAt(head, riffHeadBytes, 0) == riffHeadBytes && std::memcmp(head, "RIFF", 4) == 0 &&
        std::memcmp(head + 8, "WAVE", 4) == 0;
    nextOffset = riffHeadBytes;
}

bool RiffWalk::Next()
{
    if (!isWave || nextOffset + chunkHeadBytes > fileBytes)
        return false;
    chunkOffset = nextOffset;
    unsigned char head[chunkHeadBytes];
    // A file that has shrunk since its length was asked would otherwise be walked to its former end.
    if (!Fetch(head, chunkHeadBytes, chunkOffset))
        return false;
    std::memcpy(chunkId, head, sizeof chunkId);
    chunkSize = LoadLittle32(head + sizeof chunkId);
    const std::uint64_t paddedSize = (std::uint64_t{chunkSize} + 1) & ~std::uint64_t{1};
    nextOffset = chunkOffset + chunkHeadBytes + paddedSize;
    return true;
}

bool RiffWalk::Is(const char (&id)[5]) const
{
    return std::memcmp(chunkId, id, sizeof chunkId) == 0;
}

void RiffWalk::ReadContent(unsigned char* buffer, int bytes)
{
    Fetch(buffer, bytes, GetContentOffset());
}

/// Whether all the bytes were there; those that were not are 0.
bool RiffWalk::Fetch(unsigned char* buffer, int bytes, std::uint64_t offset)
{
    const auto wanted = static_cast<std::uint64_t>(bytes);
    if (offset < windowOffset || offset + wanted > windowOffset + windowBytes) {
        windowOffset = offset;
        windowBytes = static_cast<std::uint64_t>(handle.ReadAt(window, maxContentBytes, offset));
    }
    const std::uint64_t got = std::min(wanted, windowOffset + windowBytes - offset);
    std::memcpy(buffer, window + (offset - windowOffset), got);
    std::fill(buffer + got, buffer + wanted, static_cast<unsigned char>(0));
    return got == wanted;
}

WaveFormatEx RiffWalk::ReadFormat()
{
    unsigned char bytes[sizeof(WaveFormatEx)] = {};
    ReadContent(bytes, static_cast<int>(std::min<std::uint32_t>(chunkSize, sizeof bytes)));
    WaveFormatEx format;
    format.formatTag = LoadLittle16(bytes);
    format.channels = LoadLittle16(bytes + 2);
    format.samplesPerSecond = LoadLittle32(bytes + 4);
    format.averageBytesPerSecond = LoadLittle32(bytes + 8);
    format.blockAlign = LoadLittle16(bytes + 12);
    format.bitsPerSample = LoadLittle16(bytes + 14);
    format.extraSize = LoadLittle16(bytes + 16);
    return format;
}

std::uint32_t RiffWalk::ReadNumber()
{
    unsigned char bytes[4];
    ReadContent(bytes, sizeof bytes);
    return LoadLittle32(bytes);
}

} // namespace Quon
