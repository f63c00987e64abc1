#pragma once

#include <cstdio>
#include <string>

namespace Tool
{

/// Copies the rest of one stream to another and flushes the target. When a stream fails, throws a ToolError
/// that contains its name.
void CopyStream(std::FILE* from, const std::string& fromName, std::FILE* to, const std::string& toName);

} // namespace Tool
