#pragma once

#include "harmonet/files/SndFile.h"
#include "tools/harmonet/FileArguments.h"

#include <memory>
#include <string>

namespace Tool
{

/// Opens a reader. Needs a SndFileService or a running sound system. Throws a ToolError for a file of a type
/// that the library does not read.
std::unique_ptr<Quon::SndFile> OpenSoundData(const FileArguments::File& file);

/// Returns the file type in words.
const char* DescribeType(const Quon::SndFile& data);

/// Formats milliseconds as M:SS.t, or as "unknown" if the length is not known.
std::string DescribeTime(unsigned long ms);

} // namespace Tool
