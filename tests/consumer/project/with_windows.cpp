// Hosts include <windows.h> in front of our headers or behind them, with UNICODE or without. This file is
// compiled in each of the four ways, and has to mean the same things in all of them; PART names the way.

#if defined(WINDOWS_FIRST)
#include <mmsystem.h>
#include <windows.h>
#endif

#include "all_headers.h"

#if !defined(WINDOWS_FIRST)
#include <mmsystem.h>
#include <windows.h>
#endif

#include <cstring>
#include <string>

bool PART()
{
    using namespace Quon;
    try {
        Quon::File file;
        file.Size();
    }
    catch (const FileEx& exception) {
        Quon::Sound sound;
        Vector3 position;
        const bool isHost =
            GetModuleHandle(nullptr) != nullptr && CreateFile != nullptr && PlaySound != nullptr;
        return isHost && !sound.SetSoundPosition(1, position) &&
            std::strcmp(exception.GetMessage(), exception.what()) == 0 &&
            std::string(exception.GetFile()).find("File") != std::string::npos;
    }
    return false;
}
