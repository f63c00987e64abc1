#include "harmonet/engine/DynamicLibrary.h"

#include <string_view>

#include <dlfcn.h>

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

EngineString Joined(const EngineString& folder, const char* name)
{
    EngineString path = folder;
    if (!path.ends_with('/')) {
        path += '/';
    }
    return path += name;
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
    for (const EngineString& folder : folders) {
        if (OpenFile(Joined(folder, name))) {
            return true;
        }
    }
    const EngineString own = OwnFolder();
    if (!own.empty() && OpenFile(Joined(own, name))) {
        return true;
    }
    return OpenFile(name);
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

bool DynamicLibrary::OpenFile(const EngineString& path)
{
    handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    return handle != nullptr;
}

} // namespace Quon
