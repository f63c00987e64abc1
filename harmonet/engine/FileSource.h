#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/File.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

/// \file
/// Files that are not in a folder, but for example in an archive, in a patch or in memory. A host derives
/// from both classes here and passes a source to File::AddRoot(), or to ResourceDatabase::AddFolder() for
/// resources. From then on all files of that owner, both definitions and sounds, are opened through the
/// source.
///
/// *Threads.* The task thread opens files. An output driver may read an open file on its own thread. Each
/// FileStream is used by one thread at a time, but two streams of one source can be used by two threads
/// concurrently. A source whose streams share state, such as one open archive, must guard it with a mutex.
///
/// *Rules.* No operation may throw, call back into the library, or wait for the task thread.

namespace Quon
{

/// One open file of a source, with its own position, initially 0. The File that opened it owns it and deletes
/// it, on the thread that closes the file.
class HARMONET_ENGINE_API FileStream
{
public:
    FileStream() = default;
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;
    virtual ~FileStream();

    /// Returns the length in bytes, or -1 if it is unknown; File::Size() then throws. Called once after
    /// opening.
    virtual std::int64_t GetSize() = 0;

    /// Moves to \p position, which is below GetSize(). Called only if the next read does not start where the
    /// last one ended. Returns false on failure; the next read then seeks again.
    virtual bool Seek(std::int64_t position) = 0;

    /// Reads up to \p bytes bytes, never beyond GetSize(), advances by their number and returns it. After a
    /// short read the caller requests the rest again. 0 is a failure; the caller then treats the file as
    /// ending here.
    virtual std::size_t Read(void* buffer, std::size_t bytes) = 0;
};

/// The files of a root. Shared ownership: the roots and each File opened from it own it.
class HARMONET_ENGINE_API FileSource
{
public:
    FileSource() = default;
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;
    virtual ~FileSource();

    /// Opens the file of that name: stores the stream and returns File::Opened, or returns the code of the
    /// failure, usually File::NotFound.
    ///
    /// The name has been validated. It is relative; its parts are separated by `/`, whatever the original
    /// separator, and none is empty, `.` or `..`. It is zero-terminated and valid during the call. A file of
    /// 0 bytes, or of 2 GiB or more, is refused after opening, as one in a folder is.
    virtual Result Open(std::string_view name, std::unique_ptr<FileStream>& stream) = 0;

    /// Reads the stamp of a file without opening it, with the same codes. A ResourceDatabase finds its
    /// resources with it and reloads those whose stamp has changed. The default opens the file, queries its
    /// size and leaves the other fields 0.
    virtual Result GetStamp(std::string_view name, FileStamp& stamp);

    /// Adds the names of all files whose names begin with \p folder and a `/`, or of all files if it is
    /// empty, in any order. The names are relative to the root, in the form that Open() receives. Returns
    /// File::NotFound for a folder that does not exist. The default returns File::NotListed: files can then
    /// be opened by name, but folders cannot be listed.
    virtual Result List(std::string_view folder, EngineVector<EngineString>& names);
};

} // namespace Quon
