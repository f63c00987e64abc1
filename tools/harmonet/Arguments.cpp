#include "tools/harmonet/Arguments.h"

#include "tools/harmonet/Suggestion.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Tool
{

namespace
{

std::vector<std::string> CommandNames(const CLI::App& program)
{
    std::vector<std::string> names;
    for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(command->get_name());
    }
    return names;
}

std::vector<std::string> OptionNames(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::string DidYouMean(const std::string& word, const std::vector<std::string>& known)
{
    const std::string suggestion = SuggestWord(word, known);
    return suggestion.empty() ? "" : "; did you mean '" + suggestion + "'?";
}

bool IsOption(const std::string& argument)
{
    return argument.size() > 2 && argument.starts_with("--");
}

/// Returns the first option that the command does not know, or an empty string.
std::string FindUnknownOption(
    const std::vector<std::string>& known, const std::vector<std::string>& arguments)
{
    for (const std::string& argument : arguments) {
        std::string name = argument.substr(0, argument.find('='));
        if (IsOption(name) && std::find(known.begin(), known.end(), name) == known.end()) {
            return name;
        }
    }
    return "";
}

} // namespace

CLI::Validator FiniteNumber()
{
    const auto refuse = [](const std::string& text) {
        char* end = nullptr;
        const float number = std::strtof(text.c_str(), &end);
        if (end == text.c_str() || *end != '\0' || !std::isfinite(number)) {
            return "expected a number, got '" + text + "'";
        }
        return std::string();
    };
    return CLI::Validator(refuse, "", "finite");
}

std::string ExplainArguments(
    const CLI::App& program, const CLI::ParseError& error, const std::vector<std::string>& arguments)
{
    const std::vector<std::string> commands = CommandNames(program);
    if (arguments.empty()) {
        return "expected a command; `harmonet --help` lists them";
    }
    const std::string& first = arguments.front();
    const bool isCommand = std::find(commands.begin(), commands.end(), first) != commands.end();
    if (!isCommand && !first.starts_with('-')) {
        const std::string hint = DidYouMean(first, commands);
        return '\'' + first + "' is not a command" + (hint.empty() ? "; `harmonet --help` lists them" : hint);
    }
    const std::vector<std::string> options =
        OptionNames(isCommand ? *program.get_subcommand(first) : program);
    if (const std::string unknown = FindUnknownOption(options, arguments); !unknown.empty()) {
        const std::string hint = DidYouMean(unknown, options);
        if (!hint.empty()) {
            return "there is no option '" + unknown + "'" + hint;
        }
    }
    return std::string(error.what()) + "; `harmonet " + (isCommand ? first + ' ' : "") +
        "--help` describes the arguments";
}

} // namespace Tool
