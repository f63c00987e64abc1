#include "drivers/openal/SoftVersion.h"

#include <AL/al.h>

#include <cstdio>
#include <cstring>
#include <utility>

namespace Quon
{

SoftVersion GetSoftVersion()
{
    constexpr std::pair firstNew = {1, 20};
    const char* const text = alGetString(AL_VERSION);
    const char* const found = text ? std::strstr(text, "ALSOFT ") : nullptr;
    std::pair version = firstNew;
    // A text without a number, which no known version has, counts as new.
    if (found && std::sscanf(found, "ALSOFT %d.%d", &version.first, &version.second) != 2) {
        version = firstNew;
    }
    return version < firstNew ? SoftVersion::Old : SoftVersion::New;
}

} // namespace Quon
