#include "tools/harmonet/Commands.h"
#include "tools/harmonet/ToolError.h"
#include "tools/harmonet/convert/Diagnosis.h"

namespace Tool
{

namespace
{

void AddMissingCommand(CLI::App& program, Action& action, const char* name)
{
    CLI::App& command = *program.add_subcommand(name, "Not available in this build.");
    command.allow_extras();
    command.callback([&action] {
        action = []() -> ExitCode {
            throw ToolError(
                "this build has no such command, because libsndfile, libsoxr, libebur128, TagLib or KISS FFT "
                "was not found");
        };
    });
}

} // namespace

void AddConvertCommand(CLI::App& program, Action& action)
{
    AddMissingCommand(program, action, "convert");
}

void AddPreviewCommand(CLI::App& program, Action& action)
{
    AddMissingCommand(program, action, "preview");
}

std::string DescribeRemedy(const std::string&)
{
    return "";
}

} // namespace Tool
