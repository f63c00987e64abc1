#include "harmonet/engine/windows/Paths.h"

#include "harmonet/engine/windows/Utf16.h"

namespace Quon
{

namespace
{

constexpr std::wstring_view extendedPrefix = L"\\\\?\\";
constexpr std::wstring_view serverPrefix = L"\\\\";

/// Calls a function that returns the required length when the buffer is too small; returns its text.
template<class Ask>
std::wstring AskText(Ask ask)
{
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        const DWORD units = ask(text.data(), static_cast<DWORD>(text.size()));
        const bool isWhole = units < text.size();
        text.resize(units);
        if (isWhole) {
            return text;
        }
    }
}

} // namespace

std::wstring ExtendedPath(const std::wstring& path)
{
    if (path.empty() || path.starts_with(extendedPrefix)) {
        return path;
    }
    const std::wstring full = AskText([&path](wchar_t* buffer, DWORD units) {
        return GetFullPathNameW(path.c_str(), units, buffer, nullptr);
    });
    if (full.empty() || full.starts_with(L"\\\\.\\")) {
        return {};
    }
    const bool isOnServer = full.starts_with(serverPrefix);
    return isOnServer ? std::wstring(extendedPrefix) + L"UNC\\" + full.substr(serverPrefix.size())
                      : std::wstring(extendedPrefix) + full;
}

std::wstring ExtendedPath(const char* path)
{
    std::wstring wide;
    return ToUtf16(path, wide) ? ExtendedPath(wide) : std::wstring();
}

HANDLE OpenExisting(const std::wstring& path, DWORD access)
{
    constexpr DWORD everybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return CreateFileW(
        path.c_str(), access, everybody, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

std::wstring FinalPath(HANDLE handle)
{
    // A volume without a drive letter still has a GUID name.
    for (const DWORD volumeName : {VOLUME_NAME_DOS, VOLUME_NAME_GUID}) {
        const std::wstring path = AskText([handle, volumeName](wchar_t* buffer, DWORD units) {
            return GetFinalPathNameByHandleW(handle, buffer, units, FILE_NAME_NORMALIZED | volumeName);
        });
        if (!path.empty()) {
            return path;
        }
    }
    return {};
}

Result ResultOfLastError()
{
    switch (GetLastError()) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return File::NotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
        return File::NotReadable;
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
        return File::BadName;
    default:
        return File::SystemError;
    }
}

} // namespace Quon
