/// A library with one function and enough data that cutting it short cuts a part that the loader maps.

#if defined(_WIN32)
#define MODULE_EXPORT __declspec(dllexport)
#else
#define MODULE_EXPORT __attribute__((visibility("default")))
#endif

extern "C" {

MODULE_EXPORT int moduleData[20000] = {42};

MODULE_EXPORT int ModuleAnswer()
{
    return moduleData[0];
}
}
