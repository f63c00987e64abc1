#include "harmonet/engine/HostFile.h"

namespace Quon
{

std::FILE* OpenHostFile(const char* path, const char* mode)
{
    return std::fopen(path, mode);
}

} // namespace Quon
