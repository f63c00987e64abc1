#pragma once

#include <filesystem>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace Quon
{

/// Whether the process has this library loaded now.
#if defined(_WIN32)
inline bool IsLoaded(const std::filesystem::path& library)
{
    return GetModuleHandleW(library.filename().c_str()) != nullptr;
}
#else
inline bool IsLoaded(const std::filesystem::path& library)
{
    void* const handle = dlopen(library.c_str(), RTLD_NOLOAD | RTLD_NOW);
    return handle != nullptr && dlclose(handle) == 0;
}
#endif

} // namespace Quon
