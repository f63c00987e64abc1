#pragma once

/// HARMONET_API marks what a user of the library, or an output driver, may link to.
///
/// Everything else is hidden in the shared library.
#if defined(_WIN32)
#if defined(HARMONET_BUILDING_LIBRARY)
#define HARMONET_API __declspec(dllexport)
#else
#define HARMONET_API __declspec(dllimport)
#endif
#else
#define HARMONET_API __attribute__((visibility("default")))
#endif
