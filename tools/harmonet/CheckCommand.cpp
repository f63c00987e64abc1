#include "tools/harmonet/Commands.h"
#include "tools/harmonet/DefinitionCheck.h"
#include "tools/harmonet/ToolError.h"

#include <cstdio>
#include <cstdlib>
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
};

struct Count
{
    int errors = 0;
    int warnings = 0;
};

std::string Describe(const Count& count)
{
    const auto name = [](int number, const char* what) {
        return std::to_string(number) + ' ' + what + (number == 1 ? "" : "s");
    };
    if (count.errors == 0 && count.warnings == 0)
        return "good";
    return name(count.errors, "error") + ", " + name(count.warnings, "warning");
}

Count Check(const std::string& path, const std::string& root)
{
    DefinitionFile file(path, root);
    Count count;
    for (const Finding& finding : DefinitionCheck().Run(file)) {
        ++(finding.isError ? count.errors : count.warnings);
        const std::string place = finding.line > 0 ? ':' + std::to_string(finding.line) : std::string();
        std::printf("%s%s: %s: %s\n", path.c_str(), place.c_str(), finding.isError ? "error" : "warning",
            finding.text.c_str());
    }
    std::printf("%s: %s\n", path.c_str(), Describe(count).c_str());
    return count;
}

/// Goes through all files, whatever becomes of each.
int RunCheck(const CheckArguments& arguments)
{
    const DefinitionHost host;
    int exitCode = EXIT_SUCCESS;
    for (const std::string& path : arguments.paths) {
        try {
            const Count count = Check(path, arguments.root);
            if (count.errors > 0 || (arguments.isStrict && count.warnings > 0))
                exitCode = EXIT_FAILURE;
        }
        catch (const ToolError& error) {
            std::fflush(stdout);
            std::fprintf(stderr, "harmonet: %s\n", error.what());
            exitCode = EXIT_FAILURE;
        }
    }
    return exitCode;
}

} // namespace

void AddCheckCommand(CLI::App& program, Action& action)
{
    const auto arguments = std::make_shared<CheckArguments>();
    CLI::App* const command = program.add_subcommand(
        "check", "Read sound definitions as a game would, and tell what is wrong with them or passed over.");
    command->footer(
        "The exit code is 0 if there are no errors, with --strict if there is nothing at all to tell.");
    command->add_option("FILE", arguments->paths, "The definitions, *.sound or *.sound.txt")->required();
    command->add_option("--root", arguments->root,
        "The folder to which the names of sound files refer; by default that of each definition");
    command->add_flag("--strict", arguments->isStrict, "Let warnings count as errors");
    command->callback([arguments, &action] { action = [arguments] { return RunCheck(*arguments); }; });
}

} // namespace Tool
