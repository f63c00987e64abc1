#pragma once

#include "harmonet/files/SndFile.h"
#include "tools/harmonet/FileArguments.h"

#include <memory>
#include <string>

namespace Tool
{

/// Opens a reader. Needs a SndFileService or a running sound system. Throws a ToolError for a file that is
/// none of the kinds that the library reads.
std::unique_ptr<Quon::SndFile> OpenSoundData(const FileArguments::File& file);

/// The kind of file in words.
const char* DescribeType(const Quon::SndFile& data);

/// Milliseconds as M:SS.t, or "unknown" for what has no known length.
std::string DescribeTime(unsigned long ms);

} // namespace Tool
