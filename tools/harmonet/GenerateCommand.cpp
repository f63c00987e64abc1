#include "tools/harmonet/Commands.h"
#include "tools/harmonet/Documents.h"
#include "tools/harmonet/Output.h"

namespace Tool
{

namespace
{

ExitCode Generate(const CLI::App& program, const std::string& what)
{
    if (what == "man") {
        Print(MakeManPage(program, HARMONET_VERSION));
    }
    else if (what == "bash") {
        Print(MakeBashCompletion(program));
    }
    else {
        Print(MakeZshCompletion(program));
    }
    return ExitCode::Done;
}

} // namespace

void AddGenerateCommand(CLI::App& program, Action& action)
{
    const auto what = std::make_shared<std::string>();
    CLI::App& command =
        *program.add_subcommand("generate", "Print the manual page or a shell completion script.");
    command.add_option("WHAT", *what, "man, bash or zsh")
        ->required()
        ->check(CLI::IsMember({"man", "bash", "zsh"}));
    command.callback(
        [&program, what, &action] { action = [&program, what] { return Generate(program, *what); }; });
}

} // namespace Tool
