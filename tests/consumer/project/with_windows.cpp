// Hosts include <windows.h> before our headers or after them, with UNICODE or without. This file is
// compiled in each of the four ways, and has to mean the same things in all of them; PART names the way.

#if defined(WINDOWS_FIRST)
#include <windows.h>
#endif

#include "all_headers.h"

#if !defined(WINDOWS_FIRST)
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
        const Vector3 position{0.0F, 0.0F, 0.0F};
        const bool isHost =
            GetModuleHandle(nullptr) != nullptr && CreateFile != nullptr && PlaySound != nullptr;
        return isHost && sound.GetRemainLength(1) == 0 && position.x == 0.0F &&
            std::strcmp(exception.GetMessage(), exception.what()) == 0 &&
            std::string(exception.GetFile()).find("File") != std::string::npos;
    }
    return false;
}
