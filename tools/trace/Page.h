#pragma once

#include <string_view>

namespace Trace
{

/// Returns page.html, with a placeholder for the data.
std::string_view GetPage();

} // namespace Trace
