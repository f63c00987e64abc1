#include "tools/harmonet/OptionText.h"

namespace Tool
{

std::vector<const CLI::App*> CommandsOf(const CLI::App& program)
{
    return program.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<const CLI::Option*> NamedOptionsOf(const CLI::App& command)
{
    return command.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

std::vector<const CLI::Option*> PositionalsOf(const CLI::App& command)
{
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::string NamesOf(const CLI::Option& option)
{
    return option.get_name(false, true);
}

bool TakesValue(const CLI::Option& option)
{
    return option.get_items_expected_max() > 0;
}

std::string ValueNameOf(const CLI::Option& option)
{
    const std::vector<std::string> choices = ChoicesOf(option);
    if (!choices.empty()) {
        return Join(choices, "|");
    }
    // CLI11 appends the checks after a colon.
    const std::string type = option.get_type_name();
    return type.substr(0, type.find(':'));
}

std::vector<std::string> ChoicesOf(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    const std::size_t begin = type.find('{');
    const std::size_t end = type.find('}', begin);
    if (begin == std::string::npos || end == std::string::npos) {
        return {};
    }
    return CLI::detail::split(type.substr(begin + 1, end - begin - 1), ',');
}

std::string Join(const std::vector<std::string>& texts, const std::string& separator)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : separator) + text;
    }
    return joined;
}

} // namespace Tool
