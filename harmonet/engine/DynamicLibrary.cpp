#include "harmonet/engine/DynamicLibrary.h"

#include "harmonet/engine/LibraryImage.h"

#include <string_view>

#include <dlfcn.h>
#include <unistd.h>

namespace Quon
{

namespace
{

/// The folder in which the engine library lies; empty if the loader does not tell.
EngineString OwnFolder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&OwnFolder), &info) == 0 || info.dli_fname == nullptr) {
        return {};
    }
    const std::string_view path = info.dli_fname;
    const std::size_t slash = path.rfind('/');
    return EngineString(slash != std::string_view::npos ? path.substr(0, slash + 1) : "./");
}

} // namespace

DynamicLibrary::DynamicLibrary(const EngineVector<EngineString>& newFolders)
    : folders(newFolders)
{
}

DynamicLibrary::~DynamicLibrary()
{
    DynamicLibrary::Close();
}

bool DynamicLibrary::Open(const char* name)
{
    Close();
    if (name == nullptr || *name == '\0') {
        return false;
    }
    if (std::string_view(name).find('/') != std::string_view::npos) {
        return OpenFile(name);
    }
    // The loader is asked last, and not about a file that was found and refused: it could find the same one
    // by a path of its own and would not look at it as closely.
    bool isRefused = false;
    for (const EngineString& place : Places()) {
        const EngineString path = place + name;
        if (OpenFile(path)) {
            return true;
        }
        isRefused = isRefused || access(path.c_str(), F_OK) == 0;
    }
    return !isRefused && Load(name);
}

void DynamicLibrary::Close()
{
    if (handle != nullptr) {
        dlclose(handle);
        handle = nullptr;
    }
}

bool DynamicLibrary::GetSymbol(void** address, const char* name)
{
    *address = handle != nullptr && name != nullptr ? dlsym(handle, name) : nullptr;
    return *address != nullptr;
}

/// The folders to look in, each with a slash at its end.
EngineVector<EngineString> DynamicLibrary::Places() const
{
    EngineVector<EngineString> places;
    for (const EngineString& folder : folders) {
        places.push_back(folder.ends_with('/') ? folder : folder + '/');
    }
    const EngineString own = OwnFolder();
    if (!own.empty()) {
        places.push_back(own);
    }
    return places;
}

bool DynamicLibrary::OpenFile(const EngineString& path)
{
    return IsWholeLibraryImage(path.c_str()) && Load(path.c_str());
}

bool DynamicLibrary::Load(const char* path)
{
    handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    return handle != nullptr;
}

} // namespace Quon
