#pragma once

#include "harmonet/engine/FileSource.h"

namespace Quon
{

/// One open file of a FileSource, with the checks and the position handling that NativeFile leaves to the
/// operating system. Internal to the engine; the thread rules are those of File.
class SourceFile : public Allocated
{
public:
    /// Opens the file by the rules of NativeFile::Open(). The result is one of File::OpenCode; `file` is set
    /// on 0 only.
    static Result Open(
        const std::shared_ptr<FileSource>& source, std::string_view name, std::unique_ptr<SourceFile>& file);
    /// Follows the same rules; the stamp is set on 0 only.
    static Result GetStamp(FileSource& source, std::string_view name, FileStamp& stamp);

    /// Returns the new position from the start, or -1 with the position unchanged.
    std::int64_t Seek(std::int64_t offset, FileSeek origin);
    /// Returns the number of bytes read, less than \p bytes at the end of the file or after a stream error.
    std::size_t Read(void* buffer, std::size_t bytes);
    /// In bytes, or -1.
    std::int64_t GetLength() const { return length; }

private:
    SourceFile(const std::shared_ptr<FileSource>& newSource, std::unique_ptr<FileStream> newStream,
        std::int64_t size);
    bool MoveStream();

    static constexpr std::int64_t positionUnknown = -1;

    /// Keeps the source alive for the stream, even if the root is removed.
    std::shared_ptr<FileSource> source;
    std::unique_ptr<FileStream> stream;
    std::int64_t length;
    std::int64_t position = 0; ///< Start of the next read; may be beyond the end.
    std::int64_t streamPosition = 0; ///< Position of the stream.
};

} // namespace Quon
