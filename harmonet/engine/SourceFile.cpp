#include "harmonet/engine/SourceFile.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Quon
{

namespace
{

constexpr std::int64_t smallestTooLarge = std::int64_t{1} << 31;

Result CheckSize(std::int64_t size)
{
    if (size == 0) {
        return File::Empty;
    }
    return size >= smallestTooLarge ? File::TooLarge : File::Opened;
}

} // namespace

Result SourceFile::Open(
    const std::shared_ptr<FileSource>& source, std::string_view name, std::unique_ptr<SourceFile>& file)
{
    std::unique_ptr<FileStream> stream;
    const Result opened = source->Open(name, stream);
    if (!opened.IsOk()) {
        return opened;
    }
    if (stream == nullptr) {
        return File::SystemError;
    }
    const std::int64_t size = stream->GetSize();
    const Result sizeResult = CheckSize(size);
    if (sizeResult.IsOk()) {
        file.reset(new SourceFile(source, std::move(stream), size));
    }
    return sizeResult;
}

Result SourceFile::GetStamp(FileSource& source, std::string_view name, FileStamp& stamp)
{
    FileStamp found;
    const Result result = source.GetStamp(name, found);
    if (!result.IsOk()) {
        return result;
    }
    constexpr auto maximum = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const Result sizeResult = CheckSize(static_cast<std::int64_t>(std::min(found.size, maximum)));
    if (sizeResult.IsOk()) {
        stamp = found;
    }
    return sizeResult;
}

SourceFile::SourceFile(
    const std::shared_ptr<FileSource>& newSource, std::unique_ptr<FileStream> newStream, std::int64_t size)
    : source(newSource)
    , stream(std::move(newStream))
    , length(std::max<std::int64_t>(size, -1))
{
}

std::int64_t SourceFile::Seek(std::int64_t offset, FileSeek origin)
{
    const std::int64_t base = origin == FileSeek::Current ? position
        : origin == FileSeek::End                         ? std::max<std::int64_t>(length, 0)
                                                          : 0;
    constexpr std::int64_t furthest = std::numeric_limits<std::int64_t>::max();
    if (offset < -base || offset > furthest - base) {
        return -1;
    }
    position = base + offset;
    return position;
}

std::size_t SourceFile::Read(void* buffer, std::size_t bytes)
{
    if (position >= length || !MoveStream()) {
        return 0;
    }
    const std::size_t wanted = std::min<std::uint64_t>(bytes, static_cast<std::uint64_t>(length - position));
    std::size_t done = 0;
    while (done < wanted) {
        const std::size_t asked = wanted - done;
        const std::size_t got = stream->Read(static_cast<char*>(buffer) + done, asked);
        if (got == 0 || got > asked) {
            // After a failure the position of the stream is unknown.
            streamPosition = positionUnknown;
            position += static_cast<std::int64_t>(done);
            return done;
        }
        done += got;
    }
    position += static_cast<std::int64_t>(done);
    streamPosition = position;
    return done;
}

bool SourceFile::MoveStream()
{
    if (streamPosition == position) {
        return true;
    }
    streamPosition = stream->Seek(position) ? position : positionUnknown;
    return streamPosition == position;
}

} // namespace Quon
