#pragma once

/// HARMONET_API marks the symbols that users of the library and output drivers may link to.
///
/// HARMONET_INTERNAL_API marks what the library's own tests, fuzzers and benchmarks link to besides. No
/// installed header declares it, and it can change at any time. Everything else is hidden in the shared
/// library, which is the same with and without tests.
#if defined(_WIN32)
#if defined(HARMONET_BUILDING_LIBRARY)
#define HARMONET_API __declspec(dllexport)
#else
#define HARMONET_API __declspec(dllimport)
#endif
#else
#define HARMONET_API __attribute__((visibility("default")))
#endif
#define HARMONET_INTERNAL_API HARMONET_API
