#pragma once

#include <cstdint>

namespace Bench
{

/// Returns the number of allocations since the program started, in all libraries. Counts malloc(), realloc()
/// and what is built on them; the system's allocator still does the work.
std::uint64_t CountAllocations();

} // namespace Bench
