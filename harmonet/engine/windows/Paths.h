#pragma once

#include "harmonet/engine/File.h"
#include "harmonet/engine/windows/System.h"

#include <string>
#include <utility>

namespace Quon
{

/// Closes a system handle at the end of the scope.
class ScopedHandle
{
public:
    explicit ScopedHandle(HANDLE newHandle)
        : handle(newHandle)
    {
    }
    ~ScopedHandle()
    {
        if (IsValid()) {
            CloseHandle(handle);
        }
    }
    ScopedHandle(const ScopedHandle&) = delete;
    ScopedHandle& operator=(const ScopedHandle&) = delete;

    bool IsValid() const { return handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle; }
    HANDLE Release() { return std::exchange(handle, INVALID_HANDLE_VALUE); }

private:
    HANDLE handle;
};

/// Makes a path absolute and adds the prefix `\\?\`, with which the system takes it literally and accepts up
/// to 32767 characters. A path that already has the prefix is not changed. Returns an empty text if the
/// system fails.
std::wstring ExtendedPath(const std::wstring& path);

/// The same for a path in UTF-8; empty if it is not UTF-8.
std::wstring ExtendedPath(const char* path);

/// Opens an existing file or folder and follows all links. Others may still read, write and delete it.
HANDLE OpenExisting(const std::wstring& path, DWORD access);

/// The path of the open file or folder as an extended path without links; empty if it cannot be determined.
std::wstring FinalPath(HANDLE handle);

/// The code of File::Open() for the thread's last error.
Result ResultOfLastError();

} // namespace Quon
