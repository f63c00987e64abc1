#pragma once

#include "harmonet/engine/File.h"
#include "harmonet/engine/windows/System.h"

#include <string>
#include <utility>

namespace Quon
{

/// Closes a handle of the system at the end of the scope.
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

/// Makes a path absolute and gives it the prefix `\\?\`, with which the system takes it character by
/// character and up to 32767 of them. A path that has it already stays. Empty if the system refuses.
std::wstring ExtendedPath(const std::wstring& path);

/// The same for a path in UTF-8; empty if it is not UTF-8.
std::wstring ExtendedPath(const char* path);

/// Opens what is there, a folder too, and follows all links. Others may go on reading, writing and deleting.
HANDLE OpenExisting(const std::wstring& path, DWORD access);

/// Where the open file or folder lies, as an extended path without a link in it; empty if the system does not
/// tell.
std::wstring FinalPath(HANDLE handle);

/// The code of File::Open() for the thread's last error.
Result ResultOfLastError();

} // namespace Quon
