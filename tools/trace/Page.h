#pragma once

#include <string_view>

namespace Trace
{

/// page.html, with a mark where the data goes.
std::string_view GetPage();

} // namespace Trace
