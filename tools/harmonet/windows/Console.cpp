#include "tools/harmonet/Console.h"

#include <cerrno>
#include <string>
#include <vector>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <timeapi.h>

namespace Tool
{

namespace
{

constexpr UINT timerStepMs = 1;
UINT codePageBefore = 0;

std::string ToUtf8(const wchar_t* wide)
{
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    if (bytes <= 0) {
        return {};
    }
    std::string text(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, text.data(), bytes, nullptr, nullptr);
    text.pop_back();
    return text;
}

std::vector<std::string> ReadCommandLine()
{
    std::vector<std::string> texts;
    int count = 0;
    if (wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
        for (int i = 0; i < count; ++i) {
            texts.push_back(ToUtf8(wide[i]));
        }
        LocalFree(wide);
    }
    return texts;
}

} // namespace

Console::Console()
{
    codePageBefore = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    timeBeginPeriod(timerStepMs);
}

Console::~Console()
{
    timeEndPeriod(timerStepMs);
    if (codePageBefore != 0) {
        SetConsoleOutputCP(codePageBefore);
    }
}

// The arguments of main() have been converted to the system's code page.
char** GetArguments(char** arguments)
{
    static std::vector<std::string> texts = ReadCommandLine();
    static std::vector<char*> pointers;
    if (texts.empty()) {
        return arguments;
    }
    if (pointers.empty()) {
        for (std::string& text : texts) {
            pointers.push_back(text.data());
        }
        pointers.push_back(nullptr);
    }
    return pointers.data();
}

bool IsTerminal()
{
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    // The console must also support the escape sequence that clears a line.
    return GetConsoleMode(output, &mode) != 0 &&
        SetConsoleMode(output, mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

bool IsInputTerminal()
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != 0;
}

std::FILE* UseBinary(std::FILE* stream)
{
    _setmode(_fileno(stream), _O_BINARY);
    return stream;
}

void IgnoreClosedPipes()
{
    // Windows has no signal for closed pipes.
}

bool IsClosedPipe(int reason)
{
    // The C library maps the system error for a pipe without a reader to EINVAL.
    const bool isPipe = GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) == FILE_TYPE_PIPE;
    return reason == EPIPE || (reason == EINVAL && isPipe);
}

} // namespace Tool
