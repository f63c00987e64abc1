#pragma once

#include "harmonet/engine/Export.h"

#include <cstdio>

namespace Quon
{

/// Opens a file of the operating system as std::fopen() does, by a path in UTF-8 on every platform. For files
/// that the host names itself, such as a file of options or one to be written; what a definition names goes
/// through File. Returns null on failure; the caller closes it with std::fclose(). Any thread.
HARMONET_ENGINE_API std::FILE* OpenHostFile(const char* path, const char* mode);

} // namespace Quon
