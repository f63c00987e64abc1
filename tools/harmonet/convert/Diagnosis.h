#pragma once

#include <string>

namespace Tool
{

/// Says what a file is that the library does not play, and how `harmonet convert` makes it playable, as the
/// continuation of a sentence. Empty if the type is unknown or this build has no converter.
std::string DescribeRemedy(const std::string& path);

} // namespace Tool
