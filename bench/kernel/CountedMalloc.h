#pragma once

#include <cstdint>

namespace Bench
{

/// How often memory has been taken since the program began, in all libraries together. malloc() and what is
/// built on it are counted; the system's own allocator still does the work.
std::uint64_t CountAllocations();

} // namespace Bench
