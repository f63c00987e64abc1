#include "tools/harmonet/Commands.h"
#include "tools/harmonet/ToolError.h"
#include "tools/harmonet/convert/Diagnosis.h"

namespace Tool
{

void AddConvertCommand(CLI::App& program, Action& action)
{
    CLI::App& command = *program.add_subcommand("convert", "This build has no converter.");
    command.allow_extras();
    command.callback([&action] {
        action = []() -> ExitCode {
            throw ToolError(
                "this build has no converter: libsndfile, libsoxr, libebur128 or TagLib was not there");
        };
    });
}

std::string DescribeRemedy(const std::string&)
{
    return "";
}

} // namespace Tool
