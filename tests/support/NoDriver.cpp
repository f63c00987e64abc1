// A library that lacks the one function that makes it a driver.

#if defined(_WIN32)
#define LIBRARY_EXPORT __declspec(dllexport)
#else
#define LIBRARY_EXPORT __attribute__((visibility("default")))
#endif

extern "C" LIBRARY_EXPORT int HarmonetNoDriver()
{
    return 0;
}
