#include "tools/harmonet/Commands.h"
#include "tools/harmonet/ToolError.h"

#include "harmonet/engine/Exception.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace
{

int Run(int argumentCount, char** arguments)
{
    CLI::App program("Plays, describes, decodes and checks sounds with Harmonet.", "harmonet");
    program.set_version_flag("--version", "harmonet " HARMONET_VERSION);
    program.require_subcommand(1);

    Tool::Action action;
    Tool::AddPlayCommand(program, action);
    Tool::AddInfoCommand(program, action);
    Tool::AddDecodeCommand(program, action);
    Tool::AddCheckCommand(program, action);
    CLI11_PARSE(program, argumentCount, arguments);
    const int result = action();
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        throw Tool::ToolError("cannot write to the standard output");
    return result;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    try {
        return Run(argumentCount, arguments);
    }
    catch (const Tool::ToolError& error) {
        std::fprintf(stderr, "harmonet: %s\n", error.what());
    }
    catch (const Quon::Exception& error) {
        std::fprintf(stderr, "harmonet: the system failed: %s\n", error.what());
    }
    catch (const std::exception& error) {
        std::fprintf(stderr, "harmonet: %s\n", error.what());
    }
    return EXIT_FAILURE;
}
