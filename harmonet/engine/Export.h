#pragma once

/// HARMONET_ENGINE_API marks the symbols of the engine services that the host, the sound library and the
/// output drivers may link to.
#if defined(_WIN32)
#if defined(HARMONET_BUILDING_ENGINE)
#define HARMONET_ENGINE_API __declspec(dllexport)
#else
#define HARMONET_ENGINE_API __declspec(dllimport)
#endif
#else
#define HARMONET_ENGINE_API __attribute__((visibility("default")))
#endif
