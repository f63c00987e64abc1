#include "tools/harmonet/Verbose.h"

#include "harmonet/engine/OS.h"
#include "tools/harmonet/Output.h"

#include <cstddef>
#include <string>

namespace Tool
{

namespace
{

void PrintMessage(Quon::MessageLevel level, const char* text, void*)
{
    static constexpr const char* names[] = {"note", "warning", "error"};
    PrintError(std::string("library ") + names[static_cast<std::size_t>(level)] + ": " + text);
}

void ShowMessages()
{
    // One for the process, so that it outlives every host.
    static Quon::OS os;
    os.SetMessageHook(PrintMessage);
}

} // namespace

void AddVerbose(CLI::App& command)
{
    command.add_flag_callback("--verbose", ShowMessages,
        "Print the library's messages about files, options and drivers to standard error");
}

} // namespace Tool
