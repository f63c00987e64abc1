#include "tools/harmonet/Arguments.h"
#include "tools/harmonet/Commands.h"
#include "tools/harmonet/Console.h"
#include "tools/harmonet/Output.h"
#include "tools/harmonet/ToolError.h"

#include "harmonet/engine/Exception.h"

#include <exception>

namespace
{

using Tool::ExitCode;

constexpr const char* exitCodes = "Exit codes:\n"
                                  "  0  success, with or without warnings\n"
                                  "  1  `check` found errors, or a failure without a code below\n"
                                  "  2  invalid arguments\n"
                                  "  3  a file is missing or cannot be opened\n"
                                  "  4  a file is damaged or of an unsupported type\n"
                                  "  5  a result cannot be written, for example because the disk is full\n"
                                  "  6  the reader of the output closed it\n"
                                  "  7  no output driver works";

void AddCommands(CLI::App& program, Tool::Action& action)
{
    // Otherwise CLI11 on Windows takes a path that begins with a slash for an option.
    program.allow_windows_style_options(false);
    program.set_version_flag("--version", "harmonet " HARMONET_VERSION);
    program.require_subcommand(1);
    program.footer(exitCodes);
    Tool::AddPlayCommand(program, action);
    Tool::AddInfoCommand(program, action);
    Tool::AddDecodeCommand(program, action);
    Tool::AddCheckCommand(program, action);
    Tool::AddConvertCommand(program, action);
    Tool::AddPreviewCommand(program, action);
    Tool::AddGenerateCommand(program, action);
}

ExitCode Run(int argumentCount, char** arguments)
{
    CLI::App program("Plays, describes, decodes, checks and converts sounds with Harmonet.", "harmonet");
    Tool::Action action;
    AddCommands(program, action);
    try {
        program.parse(argumentCount, arguments);
    }
    catch (const CLI::Success& request) {
        // The user asked for the help or the version.
        program.exit(request);
        Tool::FlushOutput();
        return ExitCode::Done;
    }
    catch (const CLI::ParseError& error) {
        throw Tool::ToolError(
            Tool::ExplainArguments(program, error, {arguments + 1, arguments + argumentCount}),
            ExitCode::BadArguments);
    }
    const ExitCode code = action();
    Tool::FlushOutput();
    return code;
}

ExitCode RunGuarded(int argumentCount, char** arguments)
{
    try {
        return Run(argumentCount, arguments);
    }
    catch (const Tool::ToolError& error) {
        Tool::PrintError(error.what());
        return error.GetCode();
    }
    catch (const Quon::Exception& error) {
        Tool::PrintError(std::string("system error: ") + error.what());
    }
    catch (const std::exception& error) {
        Tool::PrintError(error.what());
    }
    return ExitCode::Failed;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const Tool::Console console;
    Tool::IgnoreClosedPipes();
    return static_cast<int>(RunGuarded(argumentCount, Tool::GetArguments(arguments)));
}
