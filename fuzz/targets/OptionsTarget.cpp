#include "fuzz/FuzzTarget.h"
#include "harmonet/engine/Options.h"
#include "tests/support/TempFolder.h"

#include <string>
#include <vector>

namespace Quon
{

namespace
{

std::vector<std::string> SplitLines(std::string_view text)
{
    std::vector<std::string> lines(1);
    for (const char character : text) {
        if (character == '\n') {
            lines.emplace_back();
        }
        else if (character != '\0') {
            lines.back() += character;
        }
    }
    return lines;
}

/// Every item of a list is in the text, in order, and contains no separator.
void CheckList(Options& options, const std::string& key, const std::string& separators)
{
    String whole;
    options.Get(key.c_str(), whole, nullptr);
    options.SetSeperators(key.c_str(), separators.c_str());
    const std::string_view text = whole.GetText();
    std::size_t place = 0;
    String item;
    while (options.GetNext(key.c_str(), item)) {
        const std::string_view view = item.GetText();
        Require(!view.empty(), "no item is empty");
        Require(view.find_first_of(separators) == std::string_view::npos, "no item contains a separator");
        place = text.find(view, place);
        Require(place != std::string_view::npos, "the items are in the text in order");
        place += view.size();
    }
    Require(!options.GetNext(key.c_str(), item), "a list stays at its end");
}

void CheckSet(Options& options, const std::string& key, const std::string& text)
{
    if (key.empty()) {
        return;
    }
    options.Set(key.c_str(), text.c_str());
    String value;
    Require(
        options.Get(key.c_str(), value, "default") && value.GetText() == text, "Get() returns what was set");
    int number = 0;
    if (options.Get(key.c_str(), number, 1)) {
        Require(number == std::stoll(text), "the number is that of the text");
    }
    else {
        Require(number == 1, "the default");
    }
}

} // namespace

void FuzzOptions(FuzzBytes bytes)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const TempFolder folder;
    const std::vector<std::string> lines = SplitLines(text);
    Options options;
    int badLine = -1;
    const bool isGood = options.ReadFile(folder.Write("options", text).c_str(), &badLine);
    Require(isGood || (badLine >= 0 && badLine <= static_cast<int>(bytes.size()) + 1),
        "the line is a line of the file");

    std::vector<const char*> arguments{"program"};
    for (const std::string& line : lines) {
        arguments.push_back("--option");
        arguments.push_back(line.c_str());
        arguments.push_back(line.c_str());
        options.SetFromText(line.c_str());
    }
    options.ReadCommandLine(static_cast<int>(arguments.size()), arguments.data());
    for (std::size_t i = 0; i + 1 < lines.size() && i < 50; ++i) {
        CheckSet(options, lines[i], lines[i + 1]);
        CheckList(options, lines[i].empty() ? "Sound" : lines[i], i % 2 == 0 ? "," : lines[i + 1]);
    }
}

} // namespace Quon
