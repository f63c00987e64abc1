#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/File.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

/// \file
/// Files that do not lie in a folder: in a pak, in a patch, in memory. A host derives from both classes here
/// and gives a source to File::AddRoot(), or to ResourceDatabase::AddFolder() for resources. From then on all
/// that is opened below that owner comes from the source, definitions and sounds of every kind.
///
/// *Threads.* The task thread opens files. An output driver may read an open file from a thread of its own;
/// each FileStream is used by one thread at a time, but two streams of one source can be used by two threads
/// at once. A source whose streams share something, such as one open archive, guards it with a mutex.
///
/// *Rules.* No operation may throw, call back into the library, or wait for the task thread.

namespace Quon
{

/// One open file of a source, with a position of its own that begins at 0. The File that opened it owns it
/// and deletes it, on the thread that closes the file.
class HARMONET_ENGINE_API FileStream
{
public:
    FileStream() = default;
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;
    virtual ~FileStream();

    /// The length in bytes, asked once after the file was opened; -1 if it is unknown, and File::Size() then
    /// throws.
    virtual std::int64_t GetSize() = 0;

    /// Moves to \p position, which lies below GetSize(). Called only where reading does not go on from where
    /// the last read ended. False if that is not possible; the next read seeks again.
    virtual bool Seek(std::int64_t position) = 0;

    /// Reads up to \p bytes bytes, never beyond GetSize(), and moves on by their number, which is the result.
    /// Fewer than asked for are asked for again; 0 is a failure, and the caller takes the file to end here.
    virtual std::size_t Read(void* buffer, std::size_t bytes) = 0;
};

/// Where a root's files are. Owned together by the roots and by each File that it has opened.
class HARMONET_ENGINE_API FileSource
{
public:
    FileSource() = default;
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;
    virtual ~FileSource();

    /// Opens the file of that name: stores the stream and returns File::Opened, or returns the code that says
    /// why not, mostly File::NotFound.
    ///
    /// The name has been checked. It is relative and its parts, none of which is empty, `.` or `..`, are
    /// separated by `/`, whatever was written. It ends with a zero, and is valid during the call. A file of 0
    /// bytes, or of 2 GiB or more, is refused after it was opened, as one in a folder is.
    virtual Result Open(std::string_view name, std::unique_ptr<FileStream>& stream) = 0;

    /// Tells the state of a file without opening it, with the same codes. A ResourceDatabase finds its
    /// resources this way and loads those whose stamp has changed again. This one opens the file, asks for
    /// its size, and leaves the other fields 0.
    virtual Result GetStamp(std::string_view name, FileStamp& stamp);

    /// Adds the names of all files whose names begin with \p folder and a `/`, or of all files if it is
    /// empty, in any order. The names are written as Open() gets them, from the root on. For a folder that
    /// the source does not have it answers File::NotFound. This one answers File::NotListed: what is in the
    /// source can then be opened by name, and not be asked for as a folder.
    virtual Result List(std::string_view folder, EngineVector<EngineString>& names);
};

} // namespace Quon
