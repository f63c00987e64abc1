#include "tools/harmonet/Commands.h"
#include "tools/harmonet/DefinitionCheck.h"
#include "tools/harmonet/FileReports.h"
#include "tools/harmonet/Findings.h"
#include "tools/harmonet/Verbose.h"

#include <memory>

namespace Tool
{

namespace
{

struct CheckArguments
{
    std::vector<std::string> paths;
    std::string root;
    bool isStrict = false;
    bool isJson = false;
};

ExitCode Check(const std::string& path, const CheckArguments& arguments)
{
    DefinitionFile file(path, arguments.root);
    const std::vector<Finding> findings = DefinitionCheck().Run(file);
    arguments.isJson ? PrintFindingsAsJson(path, findings) : PrintFindings(path, findings);
    const Count count = CountFindings(findings);
    const bool isGood = count.errors == 0 && (count.warnings == 0 || !arguments.isStrict);
    return isGood ? ExitCode::Done : ExitCode::Failed;
}

ExitCode RunCheck(const CheckArguments& arguments)
{
    const DefinitionHost host;
    return ForEachFile(
        arguments.paths, arguments.isJson, [&](const std::string& path) { return Check(path, arguments); });
}

} // namespace

void AddCheckCommand(CLI::App& program, Action& action)
{
    const auto arguments = std::make_shared<CheckArguments>();
    CLI::App* const command = program.add_subcommand(
        "check", "Read sound definitions as a game does, and report what is wrong or ignored.");
    command->footer(
        "The exit code is 0 if there are no errors; with --strict, if there are no warnings either.");
    command
        ->add_option("FILE", arguments->paths, "Definitions, *.sound or *.sound.txt, or - for standard input")
        ->required();
    command->add_option("--root", arguments->root,
        "Folder that the names of sound files are relative to; by default the folder of each definition");
    command->add_flag("--strict", arguments->isStrict, "Treat warnings as errors");
    command->add_flag("--json", arguments->isJson, "Print one line of JSON for each definition");
    AddVerbose(*command);
    command->callback([arguments, &action] { action = [arguments] { return RunCheck(*arguments); }; });
}

} // namespace Tool
