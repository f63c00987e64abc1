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
    // NOLINTNEXTLINE(cert-err34-c): of the library's own text, and what is no number leaves the version as it
    // is.
    if (found && std::sscanf(found, "ALSOFT %d.%d", &version.first, &version.second) != 2) {
        version = firstNew;
    }
    return version < firstNew ? SoftVersion::Old : SoftVersion::New;
}

} // namespace Quon
