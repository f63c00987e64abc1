// The functions of OpenAL that the driver calls, each of which forwards to the one of the same name in the
// loaded library. Add further functions to the list below.

#include "drivers/openal/AlLibrary.h"

#include "harmonet/engine/DynamicLibrary.h"

#include <AL/al.h>
#include <AL/alc.h>

#include <cstddef>

#define HARMONET_AL_FUNCTIONS(ENTRY)                                                                         \
    ENTRY(void, alBufferData, (ALuint a, ALenum b, const ALvoid* c, ALsizei d, ALsizei e), (a, b, c, d, e))  \
    ENTRY(void, alDeleteBuffers, (ALsizei a, const ALuint* b), (a, b))                                       \
    ENTRY(void, alDeleteSources, (ALsizei a, const ALuint* b), (a, b))                                       \
    ENTRY(void, alDistanceModel, (ALenum a), (a))                                                            \
    ENTRY(void, alDopplerFactor, (ALfloat a), (a))                                                           \
    ENTRY(void, alGenBuffers, (ALsizei a, ALuint * b), (a, b))                                               \
    ENTRY(void, alGenSources, (ALsizei a, ALuint * b), (a, b))                                               \
    ENTRY(ALenum, alGetEnumValue, (const ALchar* a), (a))                                                    \
    ENTRY(ALenum, alGetError, (), ())                                                                        \
    ENTRY(void, alGetListenerf, (ALenum a, ALfloat * b), (a, b))                                             \
    ENTRY(void*, alGetProcAddress, (const ALchar* a), (a))                                                   \
    ENTRY(void, alGetSourcei, (ALuint a, ALenum b, ALint * c), (a, b, c))                                    \
    ENTRY(const ALchar*, alGetString, (ALenum a), (a))                                                       \
    ENTRY(ALboolean, alIsExtensionPresent, (const ALchar* a), (a))                                           \
    ENTRY(void, alListener3f, (ALenum a, ALfloat b, ALfloat c, ALfloat d), (a, b, c, d))                     \
    ENTRY(void, alListenerf, (ALenum a, ALfloat b), (a, b))                                                  \
    ENTRY(void, alListenerfv, (ALenum a, const ALfloat* b), (a, b))                                          \
    ENTRY(void, alSource3f, (ALuint a, ALenum b, ALfloat c, ALfloat d, ALfloat e), (a, b, c, d, e))          \
    ENTRY(void, alSource3i, (ALuint a, ALenum b, ALint c, ALint d, ALint e), (a, b, c, d, e))                \
    ENTRY(void, alSourcePlay, (ALuint a), (a))                                                               \
    ENTRY(void, alSourceQueueBuffers, (ALuint a, ALsizei b, const ALuint* c), (a, b, c))                     \
    ENTRY(void, alSourceRewind, (ALuint a), (a))                                                             \
    ENTRY(void, alSourceStop, (ALuint a), (a))                                                               \
    ENTRY(void, alSourceUnqueueBuffers, (ALuint a, ALsizei b, ALuint * c), (a, b, c))                        \
    ENTRY(void, alSourcef, (ALuint a, ALenum b, ALfloat c), (a, b, c))                                       \
    ENTRY(void, alSourcefv, (ALuint a, ALenum b, const ALfloat* c), (a, b, c))                               \
    ENTRY(void, alSourcei, (ALuint a, ALenum b, ALint c), (a, b, c))                                         \
    ENTRY(ALCboolean, alcCloseDevice, (ALCdevice * a), (a))                                                  \
    ENTRY(ALCcontext*, alcCreateContext, (ALCdevice * a, const ALCint* b), (a, b))                           \
    ENTRY(void, alcDestroyContext, (ALCcontext * a), (a))                                                    \
    ENTRY(ALCdevice*, alcGetContextsDevice, (ALCcontext * a), (a))                                           \
    ENTRY(ALCcontext*, alcGetCurrentContext, (), ())                                                         \
    ENTRY(ALCenum, alcGetError, (ALCdevice * a), (a))                                                        \
    ENTRY(void, alcGetIntegerv, (ALCdevice * a, ALCenum b, ALCsizei c, ALCint * d), (a, b, c, d))            \
    ENTRY(void*, alcGetProcAddress, (ALCdevice * a, const ALCchar* b), (a, b))                               \
    ENTRY(const ALCchar*, alcGetString, (ALCdevice * a, ALCenum b), (a, b))                                  \
    ENTRY(ALCboolean, alcIsExtensionPresent, (ALCdevice * a, const ALCchar* b), (a, b))                      \
    ENTRY(ALCboolean, alcMakeContextCurrent, (ALCcontext * a), (a))                                          \
    ENTRY(ALCdevice*, alcOpenDevice, (const ALCchar* a), (a))

namespace Quon
{

namespace
{

constexpr const char* libraryName = "OpenAL32.dll";

/// The addresses in the library. Written by LoadAlLibrary() before any function is called, and only read
/// afterwards.
struct Functions
{
#define HARMONET_AL_MEMBER(RESULT, NAME, PARAMETERS, ARGUMENTS) decltype(&::NAME) NAME = nullptr;
    HARMONET_AL_FUNCTIONS(HARMONET_AL_MEMBER)
#undef HARMONET_AL_MEMBER
};

Functions functions;
bool isLoaded = false;

template<class Function>
bool Find(DynamicLibrary& library, const char* name, Function& function)
{
    void* address = nullptr;
    const bool isThere = library.GetSymbol(&address, name);
    function = reinterpret_cast<Function>(address);
    return isThere;
}

bool FindAll(DynamicLibrary& library)
{
    bool areThere = true;
#define HARMONET_AL_FIND(RESULT, NAME, PARAMETERS, ARGUMENTS)                                                \
    areThere = Find(library, #NAME, functions.NAME) && areThere;
    HARMONET_AL_FUNCTIONS(HARMONET_AL_FIND)
#undef HARMONET_AL_FIND
    return areThere;
}

/// Never destroyed, so that the library stays loaded.
DynamicLibrary& GetLibrary()
{
    alignas(DynamicLibrary) static std::byte place[sizeof(DynamicLibrary)];
    static auto* const library = new (place) DynamicLibrary({});
    return *library;
}

} // namespace

bool LoadAlLibrary()
{
    if (!isLoaded) {
        isLoaded = GetLibrary().Open(libraryName) && FindAll(GetLibrary());
    }
    return isLoaded;
}

} // namespace Quon

#define HARMONET_AL_FORWARD(RESULT, NAME, PARAMETERS, ARGUMENTS)                                             \
    extern "C" RESULT AL_APIENTRY NAME PARAMETERS                                                            \
    {                                                                                                        \
        return Quon::functions.NAME ARGUMENTS;                                                               \
    }
HARMONET_AL_FUNCTIONS(HARMONET_AL_FORWARD)
#undef HARMONET_AL_FORWARD
