#include "harmonet/engine/NativeFile.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quon::NativeFile
{

namespace
{

constexpr off_t smallestTooLarge = off_t{1} << 31;
/// The maximum that every platform can read in one call.
constexpr std::size_t longestRead = std::size_t{1} << 30;

Result CheckStatus(const struct stat& status)
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

/// Examines the file without opening it: opening a pipe or a device could block forever.
Result Examine(const EngineString& path, struct stat& status)
{
    return stat(path.c_str(), &status) == 0 ? CheckStatus(status) : ResultOfOpenError();
}

std::uint64_t MixedIdentity(const struct stat& status)
{
    return static_cast<std::uint64_t>(status.st_dev) * 0x9E3779B97F4A7C15U ^
        static_cast<std::uint64_t>(status.st_ino);
}

} // namespace

Result GetStamp(const EngineString& path, FileStamp& stamp)
{
    struct stat status
    {
    };
    const Result examined = Examine(path, status);
    if (examined.IsOk()) {
        stamp.modifiedNs = std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
        stamp.size = static_cast<std::uint64_t>(status.st_size);
        stamp.identity = MixedIdentity(status);
    }
    return examined;
}

Result Open(const EngineString& path, Handle& handle)
{
    struct stat status
    {
    };
    const Result examined = Examine(path, status);
    if (!examined.IsOk()) {
        return examined;
    }
    // The file may have been replaced since it was examined: do not block, do not follow links, and examine
    // it again.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
        return ResultOfOpenError();
    }
    const Result checked = fstat(descriptor, &status) == 0 ? CheckStatus(status) : Result(File::SystemError);
    if (checked.IsOk()) {
        handle = descriptor;
    }
    else {
        close(descriptor);
    }
    return checked;
}

std::int64_t Seek(Handle handle, std::int64_t offset, FileSeek origin)
{
    static_assert(SEEK_SET == 0 && SEEK_CUR == 1 && SEEK_END == 2, "FileSeek has the values of the system");
    const off_t position = lseek(static_cast<int>(handle), offset, static_cast<int>(origin));
    return position >= 0 ? position : -1;
}

std::size_t Read(Handle handle, void* buffer, std::size_t bytes)
{
    std::size_t done = 0;
    while (done < bytes) {
        const ssize_t got = read(
            static_cast<int>(handle), static_cast<char*>(buffer) + done, std::min(bytes - done, longestRead));
        if (got > 0) {
            done += static_cast<std::size_t>(got);
        }
        else if (got == 0 || errno != EINTR) {
            break;
        }
    }
    return done;
}

bool Close(Handle handle)
{
    return close(static_cast<int>(handle)) == 0;
}

std::int64_t GetLength(Handle handle)
{
    struct stat status
    {
    };
    return fstat(static_cast<int>(handle), &status) == 0 ? std::int64_t{status.st_size} : -1;
}

} // namespace Quon::NativeFile
