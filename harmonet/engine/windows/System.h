#pragma once

/// The system's header for the files of this folder, without its optional macros. Do not include it in other
/// headers, since its remaining macros rename identifiers after it.

#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
