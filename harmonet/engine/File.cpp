#include "harmonet/engine/File.h"

#include "harmonet/engine/Exception.h"
#include "harmonet/engine/FileRoots.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quon
{

namespace
{

constexpr off_t smallestTooLarge = off_t{1} << 31;
/// What the system takes in one call on every platform.
constexpr unsigned long longestRead = 1ul << 30;

/// Where the exception of Size() says that it comes from; hosts look for this place.
constexpr const char* sizeFailedFile = "..\\..\\..\\Inc\\File";
constexpr int sizeFailedLine = 2467;

Result Judge(const struct stat& status)
{
    if (!S_ISREG(status.st_mode)) {
        return File::NotAFile;
    }
    if (status.st_size == 0) {
        return File::Empty;
    }
    return status.st_size >= smallestTooLarge ? File::TooLarge : File::Opened;
}

Result ResultOfOpenError()
{
    return errno == EACCES || errno == EPERM ? File::NotReadable
        : errno == ENOENT                    ? File::NotFound
                                             : File::SystemError;
}

/// Resolves the name and looks at the file without opening it: opening a pipe or a device could wait for
/// ever.
Result Examine(const PString& owner, const char* name, EngineString& path, struct stat& status)
{
    const Result resolved = FileRoots::Get().Resolve(owner, name, path);
    if (!resolved.IsOk()) {
        return resolved;
    }
    return stat(path.c_str(), &status) == 0 ? Judge(status) : ResultOfOpenError();
}

std::uint64_t MixedIdentity(const struct stat& status)
{
    return static_cast<std::uint64_t>(status.st_dev) * 0x9E3779B97F4A7C15u ^
        static_cast<std::uint64_t>(status.st_ino);
}

} // namespace

File::File() = default;

File::~File()
{
    Close();
}

bool File::AddRoot(const PString& owner, const char* folder)
{
    return FileRoots::Get().Add(owner, folder);
}

void File::RemoveRoot(const PString& owner)
{
    FileRoots::Get().Remove(owner);
}

Result File::GetStamp(const PString& owner, const char* name, FileStamp& stamp)
{
    EngineString path;
    struct stat status
    {
    };
    const Result examined = Examine(owner, name, path, status);
    if (examined.IsOk()) {
        stamp.modifiedNs = std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
        stamp.size = static_cast<std::uint64_t>(status.st_size);
        stamp.identity = MixedIdentity(status);
    }
    return examined;
}

Result File::Open(const PString& owner, const char* name, unsigned long mode)
{
    Close();
    if (mode != modeRead) {
        return BadMode;
    }
    EngineString path;
    struct stat status
    {
    };
    const Result examined = Examine(owner, name, path, status);
    if (!examined.IsOk()) {
        return examined;
    }
    // The file may have been exchanged since it was looked at: no waiting, no following, and another look.
    descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
        return ResultOfOpenError();
    }
    const Result judged = fstat(descriptor, &status) == 0 ? Judge(status) : Result(SystemError);
    if (!judged.IsOk()) {
        Close();
    }
    return judged;
}

unsigned long File::Seek(long offset, FileSeek origin)
{
    static_assert(SEEK_SET == 0 && SEEK_CUR == 1 && SEEK_END == 2, "FileSeek has the values of the system");
    const off_t position = lseek(descriptor, offset, static_cast<int>(origin));
    return position >= 0 ? static_cast<unsigned long>(position) : seekFailed;
}

unsigned long File::Read(void* buffer, unsigned long size, unsigned long count)
{
    if (count != 0 && size > std::numeric_limits<unsigned long>::max() / count) {
        return 0;
    }
    const unsigned long wanted = size * count;
    unsigned long done = 0;
    while (done < wanted) {
        const ssize_t got =
            read(descriptor, static_cast<char*>(buffer) + done, std::min(wanted - done, longestRead));
        if (got > 0) {
            done += static_cast<unsigned long>(got);
        }
        else if (got == 0 || errno != EINTR) {
            break;
        }
    }
    return done;
}

unsigned long File::Close()
{
    int failure = 0;
    if (descriptor >= 0) {
        failure = close(descriptor);
        descriptor = -1;
    }
    knownSize = sizeUnknown;
    return failure == 0 ? 0 : 1;
}

unsigned long File::Size() const
{
    if (knownSize == sizeUnknown) {
        struct stat status
        {
        };
        if (fstat(descriptor, &status) != 0) {
            throw FileEx(sizeFailedFile, sizeFailedLine, "Size() failed to get file length");
        }
        knownSize = status.st_size;
    }
    return static_cast<unsigned long>(knownSize);
}

} // namespace Quon
