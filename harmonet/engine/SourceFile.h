#pragma once

#include "harmonet/engine/FileSource.h"

namespace Quon
{

/// One open file of a FileSource, with the checks and the positions that NativeFile leaves to the operating
/// system. Internal to the engine; the thread rules are those of File.
class SourceFile : public Allocated
{
public:
    /// Opens the file, by the rules of NativeFile::Open(). The result is one of File::OpenCode; `file` is set
    /// with 0 only.
    static Result Open(
        const std::shared_ptr<FileSource>& source, std::string_view name, std::unique_ptr<SourceFile>& file);
    /// By the same rules; the stamp is set with 0 only.
    static Result GetStamp(FileSource& source, std::string_view name, FileStamp& stamp);

    /// Returns the new position from the start, or -1, the position being unchanged.
    std::int64_t Seek(std::int64_t offset, FileSeek origin);
    /// Returns the bytes read: fewer than \p bytes at the end of the file, or when the stream fails.
    std::size_t Read(void* buffer, std::size_t bytes);
    /// In bytes, or -1.
    std::int64_t GetLength() const { return length; }

private:
    SourceFile(const std::shared_ptr<FileSource>& newSource, std::unique_ptr<FileStream> newStream,
        std::int64_t size);
    bool MoveStream();

    static constexpr std::int64_t positionUnknown = -1;

    /// Lives longer than its stream, whatever becomes of the root.
    std::shared_ptr<FileSource> source;
    std::unique_ptr<FileStream> stream;
    std::int64_t length;
    std::int64_t position = 0; ///< Where the next read begins; it may lie beyond the end.
    std::int64_t streamPosition = 0; ///< Where the stream stands.
};

} // namespace Quon
