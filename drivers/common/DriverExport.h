#pragma once

/// HARMONET_DRIVER_EXPORT marks the only function that an output driver's library exports: CreateSoundDriver.
#if defined(_WIN32)
#define HARMONET_DRIVER_EXPORT extern "C" __declspec(dllexport)
#else
#define HARMONET_DRIVER_EXPORT extern "C" __attribute__((visibility("default")))
#endif
