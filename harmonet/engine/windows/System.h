#pragma once

/// The system's header as the files of this folder need it: without the macros that it can leave out. Not for
/// other headers, since its remaining macros rename whatever stands behind it.

#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
