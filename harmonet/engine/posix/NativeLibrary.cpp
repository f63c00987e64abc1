#include "harmonet/engine/NativeLibrary.h"

#include <dlfcn.h>
#include <unistd.h>

namespace Quon::NativeLibrary
{

std::string_view GetSeparators()
{
    return "/";
}

EngineString GetOwnFolder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&GetOwnFolder), &info) == 0 || info.dli_fname == nullptr) {
        return {};
    }
    const std::string_view path = info.dli_fname;
    const std::size_t slash = path.rfind('/');
    return EngineString(slash != std::string_view::npos ? path.substr(0, slash + 1) : "./");
}

bool Exists(const char* path)
{
    return access(path, F_OK) == 0;
}

void* Load(const char* path)
{
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

EngineString DescribeFailure()
{
    const char* const text = dlerror();
    return text != nullptr ? text : "";
}

void Unload(void* handle)
{
    dlclose(handle);
}

void* FindSymbol(void* handle, const char* name)
{
    return dlsym(handle, name);
}

} // namespace Quon::NativeLibrary
