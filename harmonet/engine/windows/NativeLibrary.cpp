#include "harmonet/engine/NativeLibrary.h"

#include "harmonet/engine/windows/Paths.h"
#include "harmonet/engine/windows/Utf16.h"

namespace Quon::NativeLibrary
{

namespace
{

/// Prevents the system from showing a message box when a library cannot be loaded.
class NoMessages
{
public:
    NoMessages() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previous); }
    ~NoMessages() { SetThreadErrorMode(previous, nullptr); }
    NoMessages(const NoMessages&) = delete;
    NoMessages& operator=(const NoMessages&) = delete;

private:
    DWORD previous = 0;
};

/// Converts a path for the loader: absolute, and with the prefix for long paths only if it is one.
std::wstring LoaderPath(const std::wstring& path)
{
    const std::wstring extended = ExtendedPath(path);
    constexpr std::wstring_view prefix = L"\\\\?\\";
    const bool isShortOnDrive = extended.size() < MAX_PATH && extended.substr(prefix.size() + 1, 1) == L":";
    return isShortOnDrive ? extended.substr(prefix.size()) : extended;
}

} // namespace

std::string_view GetSeparators()
{
    return "/\\:";
}

EngineString GetOwnFolder()
{
    HMODULE module = nullptr;
    constexpr DWORD byAddress =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (GetModuleHandleExW(byAddress, reinterpret_cast<const wchar_t*>(&GetOwnFolder), &module) == 0) {
        return {};
    }
    std::wstring path(MAX_PATH, L'\0');
    DWORD units = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    while (units == path.size()) {
        path.resize(2 * path.size());
        units = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    }
    path.resize(units);
    return ToUtf8(std::wstring_view(path).substr(0, path.find_last_of(L"\\/") + 1));
}

bool Exists(const char* path)
{
    const std::wstring extended = ExtendedPath(path);
    return !extended.empty() && GetFileAttributesW(extended.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void* Load(const char* path)
{
    std::wstring wide;
    if (!ToUtf16(path, wide)) {
        return nullptr;
    }
    const NoMessages silence;
    // Never search the current folder, which is untrusted.
    if (wide.find_first_of(L"/\\:") == std::wstring::npos) {
        return LoadLibraryExW(wide.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    }
    // The library's dependencies may be beside it.
    constexpr DWORD places = LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
    return LoadLibraryExW(LoaderPath(wide).c_str(), nullptr, places);
}

EngineString DescribeFailure()
{
    const DWORD code = GetLastError();
    std::wstring text(MAX_PATH, L'\0');
    text.resize(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
        text.data(), static_cast<DWORD>(text.size()), nullptr));
    // The system appends a line break.
    text.erase(text.find_last_not_of(L"\r\n .") + 1);
    return ToUtf8(text);
}

void Unload(void* handle)
{
    FreeLibrary(static_cast<HMODULE>(handle));
}

void* FindSymbol(void* handle, const char* name)
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name));
}

} // namespace Quon::NativeLibrary
