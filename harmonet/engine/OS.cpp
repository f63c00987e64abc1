#include "harmonet/engine/OS.h"

#include "harmonet/engine/PStringCache.h"

namespace Quon
{

OS::OS()
{
    PStringCache::Get();
}

OS::~OS()
{
    Messages::SetHook(this, nullptr, nullptr);
}

Options* OS::GetOptions() const
{
    return &options;
}

DynamicLibrary* OS::CreateDynamicLibrary() const
{
    return new DynamicLibrary(driverFolders);
}

void OS::AddDriverFolder(const char* folder)
{
    if (folder != nullptr && *folder != '\0') {
        driverFolders.emplace_back(folder);
    }
}

void OS::SetMessageHook(MessageHook hook, void* user)
{
    Messages::SetHook(this, hook, user);
}

} // namespace Quon
