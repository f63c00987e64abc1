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
        "check", "Read sound definitions as a game would, and tell what is wrong with them or passed over.");
    command->footer(
        "The exit code is 0 if there are no errors, with --strict if there is nothing at all to tell.");
    command
        ->add_option(
            "FILE", arguments->paths, "The definitions, *.sound or *.sound.txt, or - for the standard input")
        ->required();
    command->add_option("--root", arguments->root,
        "The folder to which the names of sound files refer; by default that of each definition");
    command->add_flag("--strict", arguments->isStrict, "Let warnings count as errors");
    command->add_flag("--json", arguments->isJson, "A line of JSON for each definition");
    AddVerbose(*command);
    command->callback([arguments, &action] { action = [arguments] { return RunCheck(*arguments); }; });
}

} // namespace Tool
