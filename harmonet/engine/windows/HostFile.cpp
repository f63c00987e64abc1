#include "harmonet/engine/HostFile.h"

#include "harmonet/engine/windows/Paths.h"
#include "harmonet/engine/windows/Utf16.h"

namespace Quon
{

std::FILE* OpenHostFile(const char* path, const char* mode)
{
    const std::wstring extended = ExtendedPath(path);
    std::wstring wideMode;
    return !extended.empty() && ToUtf16(mode, wideMode) ? _wfopen(extended.c_str(), wideMode.c_str())
                                                        : nullptr;
}

} // namespace Quon
