#include "harmonet/files/RiffWalk.h"

#include "harmonet/files/LittleEndian.h"
#include "harmonet/files/SndFileHandle.h"

#include <algorithm>
#include <cstring>

namespace Quon
{

namespace
{

constexpr std::size_t firstWindowBytes = RiffWalk::maxContentBytes;
constexpr std::size_t maxWindowBytes = std::size_t{1} << 16;

std::uint64_t PaddedSize(std::uint32_t chunkSize)
{
    return (std::uint64_t{chunkSize} + 1) & ~std::uint64_t{1};
}

constexpr std::uint32_t ToNumber(const char (&id)[5])
{
    return static_cast<std::uint32_t>(id[0]) | static_cast<std::uint32_t>(id[1]) << 8 |
        static_cast<std::uint32_t>(id[2]) << 16 | static_cast<std::uint32_t>(id[3]) << 24;
}

/// Whether any user of RiffWalk needs a chunk with this header.
bool HasMeaning(const unsigned char* head)
{
    const std::uint32_t id = LoadLittle32(head);
    return id == ToNumber("fmt ") || id == ToNumber("fact") || id == ToNumber("data");
}

} // namespace

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
    while (isWave) {
        SkipIrrelevant();
        if (nextOffset + chunkHeadBytes > fileBytes) {
            break;
        }
        chunkOffset = nextOffset;
        unsigned char head[chunkHeadBytes];
        // Otherwise a file that has shrunk since its length was queried would be read to its former end.
        if (!Fetch(head, chunkHeadBytes, chunkOffset)) {
            break;
        }
        std::memcpy(chunkId, head, sizeof chunkId);
        chunkSize = LoadLittle32(head + sizeof chunkId);
        nextOffset = chunkOffset + chunkHeadBytes + PaddedSize(chunkSize);
        if (HasMeaning(head)) {
            return true;
        }
    }
    return false;
}

void RiffWalk::SkipIrrelevant()
{
    if (nextOffset < windowOffset || nextOffset - windowOffset > windowBytes) {
        return;
    }
    const unsigned char* const begin = window.data();
    const unsigned char* const end = begin + windowBytes;
    const unsigned char* head = begin + (nextOffset - windowOffset);
    while (end - head >= chunkHeadBytes && !HasMeaning(head)) {
        const std::uint64_t size = PaddedSize(LoadLittle32(head + sizeof chunkId));
        // A separate branch lets the processor continue before the size has been loaded.
        if (size == 0) {
            head += chunkHeadBytes;
            continue;
        }
        if (size > static_cast<std::uint64_t>(end - head - chunkHeadBytes)) {
            break;
        }
        head += chunkHeadBytes + size;
    }
    nextOffset = windowOffset + static_cast<std::uint64_t>(head - begin);
}

bool RiffWalk::Is(const char (&id)[5]) const
{
    return std::memcmp(chunkId, id, sizeof chunkId) == 0;
}

void RiffWalk::ReadContent(unsigned char* buffer, int bytes)
{
    Fetch(buffer, bytes, GetContentOffset());
}

/// Returns whether all bytes were available; missing ones are 0.
bool RiffWalk::Fetch(unsigned char* buffer, int bytes, std::uint64_t offset)
{
    const auto wanted = static_cast<std::uint64_t>(bytes);
    if (offset < windowOffset || offset + wanted > windowOffset + windowBytes) {
        const bool goesOn = windowBytes > 0 && offset >= windowOffset && offset <= windowOffset + windowBytes;
        window.resize(goesOn ? std::min(2 * window.size(), maxWindowBytes) : firstWindowBytes);
        windowOffset = offset;
        windowBytes =
            static_cast<std::uint64_t>(handle.ReadAt(window.data(), static_cast<int>(window.size()), offset));
    }
    const std::uint64_t got = std::min(wanted, windowOffset + windowBytes - offset);
    std::memcpy(buffer, window.data() + (offset - windowOffset), got);
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

int FindFormatTag(SndFileHandle& handle)
{
    RiffWalk walk(handle);
    while (walk.Next()) {
        if (!walk.Is("fmt ")) {
            continue;
        }
        const bool fits =
            walk.GetSize() >= RiffWalk::minFormatBytes && walk.GetSize() <= RiffWalk::maxFormatBytes;
        return fits ? walk.ReadFormat().formatTag : 0;
    }
    return 0;
}

} // namespace Quon
