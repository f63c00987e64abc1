#pragma once

#include "tools/harmonet/InputFile.h"
#include "tools/harmonet/OutputFile.h"

namespace Tool
{

/// Copies an MPEG stream without the tags at its start and its end (ID3v1, ID3v2, APE) and without any other
/// bytes before its first MPEG frame. The frames are copied bit for bit. Throws a ToolError if there are no
/// frames or the copy cannot be written.
void CopyWithoutTags(const InputFile& input, const OutputFile& output);

} // namespace Tool
