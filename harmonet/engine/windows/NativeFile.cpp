#include "harmonet/engine/NativeFile.h"

#include "harmonet/engine/windows/Paths.h"

#include <algorithm>

namespace Quon::NativeFile
{

namespace
{

static_assert(FILE_BEGIN == 0 && FILE_CURRENT == 1 && FILE_END == 2, "FileSeek has the values of the system");

constexpr std::uint64_t smallestTooLarge = std::uint64_t{1} << 31;
/// The maximum that every platform can read in one call.
constexpr std::size_t longestRead = std::size_t{1} << 30;
/// The system counts the time in steps of 100 ns.
constexpr std::int64_t nanosecondsPerStep = 100;

std::uint64_t Join(DWORD high, DWORD low)
{
    return std::uint64_t{high} << 32 | low;
}

HANDLE SystemHandle(Handle handle)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the system's handle is a pointer in name only.
    return reinterpret_cast<HANDLE>(handle);
}

Result Judge(HANDLE handle, BY_HANDLE_FILE_INFORMATION& information)
{
    if (GetFileInformationByHandle(handle, &information) == 0) {
        return File::SystemError;
    }
    if (GetFileType(handle) != FILE_TYPE_DISK ||
        (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return File::NotAFile;
    }
    const std::uint64_t size = Join(information.nFileSizeHigh, information.nFileSizeLow);
    if (size == 0) {
        return File::Empty;
    }
    return size >= smallestTooLarge ? File::TooLarge : File::Opened;
}

} // namespace

Result GetStamp(const EngineString& path, FileStamp& stamp)
{
    const ScopedHandle file(OpenExisting(ExtendedPath(path.c_str()), FILE_READ_ATTRIBUTES));
    if (!file.IsValid()) {
        return ResultOfLastError();
    }
    BY_HANDLE_FILE_INFORMATION information{};
    const Result judged = Judge(file.Get(), information);
    if (judged.IsOk()) {
        const FILETIME& written = information.ftLastWriteTime;
        const std::uint64_t steps = Join(written.dwHighDateTime, written.dwLowDateTime);
        // Wraps around after about 580 years, which does not affect comparisons.
        stamp.modifiedNs = static_cast<std::int64_t>(steps * nanosecondsPerStep);
        stamp.size = Join(information.nFileSizeHigh, information.nFileSizeLow);
        stamp.identity = information.dwVolumeSerialNumber * 0x9E3779B97F4A7C15U ^
            Join(information.nFileIndexHigh, information.nFileIndexLow);
    }
    return judged;
}

Result Open(const EngineString& path, Handle& handle)
{
    const std::wstring expected = ExtendedPath(path.c_str());
    ScopedHandle file(OpenExisting(expected, GENERIC_READ));
    if (!file.IsValid()) {
        return ResultOfLastError();
    }
    BY_HANDLE_FILE_INFORMATION information{};
    const Result judged = Judge(file.Get(), information);
    if (!judged.IsOk()) {
        return judged;
    }
    // The path may have become a link since it was resolved.
    const std::wstring place = FinalPath(file.Get());
    if (!place.empty() && place != expected) {
        return File::OutsideRoot;
    }
    handle = reinterpret_cast<Handle>(file.Release());
    return File::Opened;
}

std::int64_t Seek(Handle handle, std::int64_t offset, FileSeek origin)
{
    LARGE_INTEGER distance{};
    distance.QuadPart = offset;
    LARGE_INTEGER position{};
    const bool isDone =
        SetFilePointerEx(SystemHandle(handle), distance, &position, static_cast<DWORD>(origin)) != 0;
    return isDone ? position.QuadPart : -1;
}

std::size_t Read(Handle handle, void* buffer, std::size_t bytes)
{
    std::size_t done = 0;
    while (done < bytes) {
        const auto wanted = static_cast<DWORD>(std::min(bytes - done, longestRead));
        DWORD got = 0;
        if (ReadFile(SystemHandle(handle), static_cast<char*>(buffer) + done, wanted, &got, nullptr) == 0 ||
            got == 0) {
            break;
        }
        done += got;
    }
    return done;
}

bool Close(Handle handle)
{
    return CloseHandle(SystemHandle(handle)) != 0;
}

std::int64_t GetLength(Handle handle)
{
    LARGE_INTEGER length{};
    return GetFileSizeEx(SystemHandle(handle), &length) != 0 ? length.QuadPart : -1;
}

} // namespace Quon::NativeFile
