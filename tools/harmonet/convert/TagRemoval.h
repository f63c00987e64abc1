#pragma once

#include "tools/harmonet/InputFile.h"
#include "tools/harmonet/OutputFile.h"

namespace Tool
{

/// Copies an MPEG stream without the tags at its start and its end (ID3v1, ID3v2, APE) and without anything
/// else ahead of its first frame. Its frames stay as they are, bit by bit. Throws a ToolError when there are
/// no frames, or the copy cannot be written.
void CopyWithoutTags(const InputFile& input, const OutputFile& output);

} // namespace Tool
