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

/// Identifies a version of a file without reading its content.
struct FileStamp
{
    /// The time of the last change, the size in bytes, and a number that identifies the file and differs
    /// after the file has been replaced. 0 if unknown.
    std::int64_t modifiedNs = 0;
    std::uint64_t size = 0;
    std::uint64_t identity = 0;

    bool operator==(const FileStamp&) const = default;
};

/// A file for reading below one of the roots that the host has added.
///
/// File names come from definitions and are untrusted. A name is therefore always looked up below an owner,
/// which represents a root that the host has added with AddRoot(): a folder, or a custom source
/// (FileSource.h). A name that would leave the root is refused. A name may contain folders, separated by `/`
/// or `\`.
///
/// A File is owned by its creator. Seek(), Read() and Size() may be called from any thread, but not
/// concurrently; all other functions are for the task thread.
class HARMONET_ENGINE_API File : public Allocated
{
public:
    /// The results of Open(), GetStamp() and List().
    enum OpenCode
    {
        Opened = 0,
        /// The host has added no root for this owner, or the root no longer exists.
        NoRoot = 1,
        /// The name is null, empty, or too long for the system. On Windows also a name that does not denote a
        /// plain file: a device, a stream, a name with a trailing dot or blank, or one that is not UTF-8.
        BadName = 2,
        /// The name is absolute, begins with a drive letter, contains `..`, or leads out of the root through
        /// a symbolic link or a junction.
        OutsideRoot = 3,
        NotFound = 4,
        /// Not a regular file, but a folder, a device or a pipe.
        NotAFile = 5,
        /// The system denies read access.
        NotReadable = 6,
        /// The file is empty.
        Empty = 7,
        /// The file is 2 GiB or larger.
        TooLarge = 8,
        /// The mode is not `modeRead`.
        BadMode = 9,
        /// Any other system error, such as too many open files or a disk failure.
        SystemError = 10,
        /// The root's source cannot list its content. Returned by List() only.
        NotListed = 11,
    };

    /// The only mode of Open().
    static constexpr unsigned long modeRead = 16;

    /// The result of Seek() on failure.
    static constexpr unsigned long seekFailed = static_cast<unsigned long>(-1);

    File();
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Sets the root folder of the owner, a native path in UTF-8; an earlier root is replaced. The empty
    /// owner is the one under which plain file names are looked up. Returns false and changes nothing if
    /// there is no such folder. Open files stay open.
    static bool AddRoot(const PString& owner, const char* folder);

    /// Sets a custom source as the root of the owner; otherwise as above. Returns false only for null.
    static bool AddRoot(const PString& owner, std::shared_ptr<FileSource> source);

    /// Removes the owner's root. Does nothing if there is none.
    static void RemoveRoot(const PString& owner);

    /// Returns the name that identifies a file in a cache. Where the platform's file names ignore case, this
    /// is the name in upper case with uniform separators; elsewhere it is the name itself.
    static PString FoldName(const PString& name);

    /// Reads the stamp of a file without opening it, with the same rules and results as Open().
    static Result GetStamp(const PString& owner, const char* name, FileStamp& stamp);

    /// Adds the names of all files in a folder of the owner's root and its subfolders, each in the form that
    /// Open() expects, sorted bytewise. "" is the whole root; the rules for the folder's name are those of
    /// Open(). Links to folders are not followed. On any result but 0, \p names may contain some of the
    /// names.
    static Result List(const PString& owner, const char* folder, EngineVector<EngineString>& names);

    /// Opens the file for reading at its start, after closing the current one. Returns one of the codes
    /// above; with any but 0 the object is closed.
    Result Open(const PString& owner, const char* name, unsigned long mode);

    /// Moves to \p offset bytes from the origin. Returns the new position from the start, or `seekFailed`
    /// with the position unchanged. A position beyond the end is allowed; reading there returns 0.
    unsigned long Seek(long offset, FileSeek origin);

    /// Reads \p size times \p count bytes. Returns the number of bytes read, which is smaller at the end of
    /// the file or after a system error; 0 if no file is open.
    unsigned long Read(void* buffer, unsigned long size, unsigned long count);

    /// Returns 0 on success or if no file was open.
    unsigned long Close();

    /// The length in bytes. Queries the system at the first call after Open() and caches the result. Throws
    /// FileEx if the length cannot be determined, and always if no file is open.
    unsigned long Size() const;

    /// Whether a file is open.
    bool IsOpen() const { return handle != closedHandle || sourceFile != nullptr; }

    /// Describes one of the codes above as the predicate of a sentence about the file.
    static const char* DescribeCode(int openCode);

private:
    static constexpr std::int64_t sizeUnknown = -1;
    static constexpr std::intptr_t closedHandle = -1;

    /// Exactly one of the two is set while a file is open.
    std::intptr_t handle = closedHandle;
    std::unique_ptr<SourceFile> sourceFile;
    mutable std::int64_t knownSize = sizeUnknown;
};

} // namespace Quon
