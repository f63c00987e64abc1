#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/engine/Result.h"

#include <cstdint>
#include <memory>

namespace Quon
{

class FileSource;
class SourceFile;

/// What an offset counts from.
enum class FileSeek
{
    Start = 0,
    Current = 1,
    End = 2,
};

/// What tells one state of a file from another without reading it.
struct FileStamp
{
    /// When it was last changed, its size in bytes, and a number of the file itself, which
    /// is another one after the file has been replaced. 0 for what is not known.
    std::int64_t modifiedNs = 0;
    std::uint64_t size = 0;
    std::uint64_t identity = 0;

    bool operator==(const FileStamp&) const = default;
};

/// Reading a file below one of the roots that the host has opened to the system.
///
/// File names come from definitions, and those from outside. So a name is always looked up below an owner,
/// which stands for a root that the host has given with AddRoot(): a folder, or a source of the host's own
/// (FileSource.h). A name that would leave the root is refused. A name may contain folders, separated by `/`
/// or `\`.
///
/// A File belongs to whoever made it. Seek(), Read() and Size() may be called from any thread, one at a time;
/// the rest is for the task thread.
class HARMONET_ENGINE_API File : public Allocated
{
public:
    /// The codes of Open(), GetStamp() and List().
    enum OpenCode
    {
        Opened = 0,
        /// The host has given no root for this owner, or the root is gone.
        NoRoot = 1,
        /// The name is null, empty, or longer than the system takes. On Windows also a name that is no plain
        /// file's there: of a device, of a stream, with a dot or blank at its end, not UTF-8.
        BadName = 2,
        /// The name is absolute, begins with a drive letter, contains `..`, or leads out of the root through
        /// a symbolic link or a junction.
        OutsideRoot = 3,
        NotFound = 4,
        /// A folder, a device, a pipe: anything but a regular file.
        NotAFile = 5,
        /// The system does not allow it to be read.
        NotReadable = 6,
        /// There is nothing in it.
        Empty = 7,
        /// 2 GiB or more.
        TooLarge = 8,
        /// The mode is not `modeRead`.
        BadMode = 9,
        /// The system refused for a reason of its own: too many open files, a disk that fails.
        SystemError = 10,
        /// The root's source does not tell what it holds. Given by List() alone.
        NotListed = 11,
    };

    /// The only mode of Open().
    static constexpr unsigned long modeRead = 16;

    /// What Seek() returns when it fails.
    static constexpr unsigned long seekFailed = static_cast<unsigned long>(-1);

    File();
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Gives the owner its root folder, a path of the operating system in UTF-8; an earlier root is replaced.
    /// The empty owner, under which plain file names are looked up, gets a root in the same way. False, and
    /// no change, if there is no such folder. Files that are open stay open.
    static bool AddRoot(const PString& owner, const char* folder);

    /// Gives the owner a source of the host's own as its root, with all else as above. False only for null.
    static bool AddRoot(const PString& owner, std::shared_ptr<FileSource> source);

    /// Takes the owner's root away. Does nothing if there is none.
    static void RemoveRoot(const PString& owner);

    /// The one name by which a cache knows a file. Where the platform's file names ignore case, names that
    /// differ in case or in the kind of separator give the same one, in capitals; elsewhere it is the name
    /// itself.
    static PString FoldName(const PString& name);

    /// Tells the state of a file without opening it, by the same rules and codes as Open().
    static Result GetStamp(const PString& owner, const char* name, FileStamp& stamp);

    /// Adds the names of all files in a folder of the owner's root and in those below it, each as Open()
    /// takes it, sorted by bytes. "" is the whole root; the rules for the folder's name are those of Open().
    /// Links to folders are not followed. With any code but 0, \p names may hold a part.
    static Result List(const PString& owner, const char* folder, EngineVector<EngineString>& names);

    /// Opens the file for reading at its start, and closes first what the object has open. The result has one
    /// of the codes above; with any but 0 the object is closed.
    Result Open(const PString& owner, const char* name, unsigned long mode);

    /// Moves to \p offset bytes from the origin. Returns the new position from the start, or `seekFailed`,
    /// the position being unchanged. A position behind the end is possible; reading there gives nothing.
    unsigned long Seek(long offset, FileSeek origin);

    /// Reads \p size times \p count bytes. Returns the bytes read, fewer at the end of the file or when the
    /// system fails; 0 if nothing is open.
    unsigned long Read(void* buffer, unsigned long size, unsigned long count);

    /// 0 if it went well or nothing was open.
    unsigned long Close();

    /// The length in bytes. Asks the system at the first call after Open() and keeps the answer. Throws
    /// FileEx if the system does not tell, which is always so when nothing is open.
    unsigned long Size() const;

    /// Whether a file is open.
    bool IsOpen() const { return handle != closedHandle || sourceFile != nullptr; }

    /// What one of the codes above means, as the end of a sentence that begins with the file: "is not there".
    static const char* DescribeCode(int openCode);

private:
    static constexpr std::int64_t sizeUnknown = -1;
    static constexpr std::intptr_t closedHandle = -1;

    /// One of the two is set while a file is open.
    std::intptr_t handle = closedHandle;
    std::unique_ptr<SourceFile> sourceFile;
    mutable std::int64_t knownSize = sizeUnknown;
};

} // namespace Quon
