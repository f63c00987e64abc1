#pragma once

#include "harmonet/engine/Export.h"

#include <cstdio>

namespace Quon
{

/// Opens a native file like std::fopen(), with a path in UTF-8 on every platform. For files named by the host
/// itself, such as an options file or an output file; files named by definitions are opened through File.
/// Returns null on failure. The caller closes the file with std::fclose(). Any thread.
HARMONET_ENGINE_API std::FILE* OpenHostFile(const char* path, const char* mode);

} // namespace Quon
