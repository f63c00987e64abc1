// The platform calls this when it loads and unloads the library, and when a thread starts or ends. All
// initialisation is done in QuonGetPlugins() and SoundSystem::Init(), so there is nothing to do here.

#include "harmonet/engine/Exception.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace
{

int AcceptReason(void* argument)
{
    switch (*static_cast<const DWORD*>(argument)) {
    case DLL_PROCESS_DETACH:
    case DLL_PROCESS_ATTACH:
    case DLL_THREAD_ATTACH:
    case DLL_THREAD_DETACH:
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    return Quon::ExceptionHandler::Main(AcceptReason, &reason);
}
