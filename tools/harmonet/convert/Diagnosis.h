#pragma once

#include <string>

namespace Tool
{

/// What a file is that the library does not play, and how `harmonet convert` mends it, as the continuation of
/// a sentence; empty if nothing is known of it, or this build has no converter.
std::string DescribeRemedy(const std::string& path);

} // namespace Tool
