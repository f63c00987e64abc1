#pragma once

#include <cstdio>
#include <string>

namespace Tool
{

/// Copies all that is left in one stream to another and flushes that. The names are those in the ToolError
/// that is thrown when a stream fails.
void CopyStream(std::FILE* from, const std::string& fromName, std::FILE* to, const std::string& toName);

} // namespace Tool
