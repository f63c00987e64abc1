#include "tools/harmonet/Documents.h"
#include "tools/harmonet/OptionText.h"

namespace Tool
{

namespace
{

/// Escapes text for the macros, so that no part of it is a request and every hyphen stays a hyphen.
std::string Escape(const std::string& text)
{
    std::string escaped;
    bool isLineStart = true;
    for (const char letter : text) {
        if (isLineStart && (letter == '.' || letter == '\'')) {
            escaped += "\\&";
        }
        if (letter == '\\') {
            escaped += "\\e";
        }
        else if (letter == '-') {
            escaped += "\\-";
        }
        else {
            escaped += letter;
        }
        isLineStart = letter == '\n';
    }
    return escaped;
}

std::string Bold(const std::string& text)
{
    return "\\fB" + Escape(text) + "\\fR";
}

std::string Italic(const std::string& text)
{
    return "\\fI" + Escape(text) + "\\fR";
}

std::string DescribeOption(const CLI::Option& option)
{
    const bool isPositional = option.get_positional();
    std::string head = isPositional ? Italic(option.get_name(true)) : Bold(NamesOf(option));
    if (!isPositional && TakesValue(option)) {
        head += ' ' + Italic(ValueNameOf(option));
    }
    return ".TP\n" + head + '\n' + Escape(option.get_description()) + '\n';
}

std::string DescribeCommand(const CLI::App& command)
{
    std::string usage = "harmonet " + command.get_name() + " [options]";
    std::string options;
    for (const CLI::Option* option : PositionalsOf(command)) {
        usage += ' ' + option->get_name(true) + (option->get_items_expected_max() > 1 ? "..." : "");
        options += DescribeOption(*option);
    }
    for (const CLI::Option* option : NamedOptionsOf(command)) {
        options += DescribeOption(*option);
    }
    const std::string footer = command.get_footer();
    return ".SS " + Escape(usage) + '\n' + Escape(command.get_description()) + '\n' + options +
        (footer.empty() ? "" : ".PP\n" + Escape(footer) + '\n');
}

} // namespace

std::string MakeManPage(const CLI::App& program, const std::string& version)
{
    std::string page = ".TH HARMONET 1 \"\" \"harmonet " + version + "\" \"User Commands\"\n";
    page += ".SH NAME\nharmonet \\- plays, describes, checks and converts sounds\n";
    page += ".SH SYNOPSIS\n" + Bold("harmonet") + " command [options] ...\n";
    page += ".SH DESCRIPTION\n" + Escape(program.get_description()) + '\n';
    page += ".SH COMMANDS\n";
    for (const CLI::App* command : CommandsOf(program)) {
        page += DescribeCommand(*command);
    }
    page += ".SH OPTIONS\n";
    for (const CLI::Option* option : NamedOptionsOf(program)) {
        page += DescribeOption(*option);
    }
    return page + ".SH NOTES\n.nf\n" + Escape(program.get_footer()) + "\n.fi\n";
}

} // namespace Tool
