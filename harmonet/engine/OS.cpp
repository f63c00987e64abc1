#include "harmonet/engine/OS.h"

#include "harmonet/engine/PStringCache.h"

namespace Quon
{

OS::OS()
{
    PStringCache::Get();
}

OS::~OS() = default;

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

} // namespace Quon
