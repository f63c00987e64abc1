#include "tools/harmonet/Documents.h"
#include "tools/harmonet/OptionText.h"

namespace Tool
{

namespace
{

std::vector<std::string> LongNames(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : NamedOptionsOf(command)) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::vector<std::string> CommandNames(const CLI::App& program)
{
    std::vector<std::string> names;
    for (const CLI::App* command : CommandsOf(program)) {
        names.push_back(command->get_name());
    }
    return names;
}

/// A branch of a bash `case` that offers the words.
std::string Offer(const std::string& pattern, const std::vector<std::string>& words)
{
    return "        " + pattern + ") COMPREPLY=($(compgen -W '" + Join(words, " ") + "' -- \"$word\")) ;;\n";
}

/// The branches for the values of options, by command and option.
std::string OfferValues(const CLI::App& program)
{
    std::string branches;
    for (const CLI::App* command : CommandsOf(program)) {
        for (const CLI::Option* option : NamedOptionsOf(*command)) {
            if (!ChoicesOf(*option).empty()) {
                branches +=
                    Offer(command->get_name() + ":--" + option->get_lnames().front(), ChoicesOf(*option));
            }
        }
    }
    return branches;
}

/// The branches for the options and the words that each command takes.
std::string OfferArguments(const CLI::App& program)
{
    std::string branches;
    for (const CLI::App* command : CommandsOf(program)) {
        branches += Offer(command->get_name() + ":-*", LongNames(*command));
        for (const CLI::Option* option : PositionalsOf(*command)) {
            if (!ChoicesOf(*option).empty()) {
                branches += Offer(command->get_name() + ":*", ChoicesOf(*option));
            }
        }
    }
    return branches;
}

/// Text inside single quotes in one of zsh's descriptions, where brackets and colons mean something.
std::string EscapeForZsh(const std::string& text)
{
    std::string escaped;
    for (const char letter : text) {
        if (letter == '\'') {
            escaped += "'\\'";
        }
        else if (letter == '[' || letter == ']' || letter == ':' || letter == '\\') {
            escaped += '\\';
        }
        escaped += letter;
    }
    return escaped;
}

std::string DescribeForZsh(const CLI::Option& option)
{
    const std::vector<std::string> choices = ChoicesOf(option);
    const std::string values = choices.empty() ? "_files" : '(' + Join(choices, " ") + ')';
    if (option.get_positional()) {
        return "'*:" + EscapeForZsh(option.get_name(true)) + ':' + values + '\'';
    }
    std::string text =
        "'--" + option.get_lnames().front() + '[' + EscapeForZsh(option.get_description()) + ']';
    if (TakesValue(option)) {
        text += ':' + EscapeForZsh(ValueNameOf(option)) + ':' + (choices.empty() ? "_files" : values);
    }
    return text + '\'';
}

std::string DescribeForZsh(const CLI::App& command)
{
    std::string text = "        " + command.get_name() + ")\n            _arguments";
    for (const CLI::Option* option : NamedOptionsOf(command)) {
        text += " \\\n                " + DescribeForZsh(*option);
    }
    for (const CLI::Option* option : PositionalsOf(command)) {
        text += " \\\n                " + DescribeForZsh(*option);
    }
    return text + "\n            ;;\n";
}

} // namespace

std::string MakeBashCompletion(const CLI::App& program)
{
    const std::vector<std::string> commands = CommandNames(program);
    std::vector<std::string> first = commands;
    for (const std::string& name : LongNames(program)) {
        first.push_back(name);
    }
    return "# Completion of harmonet for bash, made by `harmonet generate bash`.\n"
           "_harmonet() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} "
           "command=${COMP_WORDS[1]}\n"
           "    COMPREPLY=()\n"
           "    if ((COMP_CWORD == 1)); then\n"
           "        COMPREPLY=($(compgen -W '" +
        Join(first, " ") +
        "' -- \"$word\"))\n"
        "        return\n"
        "    fi\n"
        "    case $command:$previous in\n" +
        OfferValues(program) +
        "        *) ;;\n"
        "    esac\n"
        "    ((${#COMPREPLY[@]} == 0)) || return 0\n"
        "    case $command:$word in\n" +
        OfferArguments(program) +
        "        *) ;;\n"
        "    esac\n"
        "}\n"
        "complete -o default -F _harmonet harmonet\n";
}

std::string MakeZshCompletion(const CLI::App& program)
{
    std::string commands;
    std::string branches;
    for (const CLI::App* command : CommandsOf(program)) {
        commands +=
            "        '" + command->get_name() + ':' + EscapeForZsh(command->get_description()) + "'\n";
        branches += DescribeForZsh(*command);
    }
    return "#compdef harmonet\n"
           "# Completion of harmonet for zsh, made by `harmonet generate zsh`.\n"
           "_harmonet() {\n"
           "    local -a commands\n"
           "    commands=(\n" +
        commands +
        "    )\n"
        "    if ((CURRENT == 2)); then\n"
        "        _describe command commands\n"
        "        return\n"
        "    fi\n"
        "    local command=$words[2]\n"
        "    shift words\n"
        "    ((CURRENT--))\n"
        "    case $command in\n" +
        branches +
        "    esac\n"
        "}\n"
        "_harmonet \"$@\"\n";
}

} // namespace Tool
