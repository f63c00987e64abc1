#include "harmonet/engine/Options.h"

#include "harmonet/engine/HostFile.h"
#include "harmonet/engine/Messages.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>

namespace Quon
{

namespace
{

constexpr std::size_t longestFile = 1 << 20;
constexpr std::string_view blanks = " \t\r\n\v\f";
constexpr std::string_view commandLineOption = "--option";

std::string_view View(const char* text)
{
    return text != nullptr ? std::string_view(text) : std::string_view();
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view WithoutQuotes(std::string_view text)
{
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        return text.substr(1, text.size() - 2);
    }
    return text;
}

bool IsIdle(std::string_view line)
{
    return line.empty() || line.starts_with('#') || line.starts_with("//");
}

/// Returns false if the file cannot be read or is too long.
bool ReadWhole(const char* path, EngineString& content)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        path != nullptr ? OpenHostFile(path, "rb") : nullptr, std::fclose);
    if (!file) {
        return false;
    }
    content.resize(longestFile + 1);
    content.resize(std::fread(content.data(), 1, content.size(), file.get()));
    return content.size() <= longestFile && std::ferror(file.get()) == 0;
}

} // namespace

Options::Options() = default;

Options::~Options() = default;

void Options::Set(const char* key, const char* text)
{
    if (View(key).empty()) {
        return;
    }
    Entry& entry = FindOrAdd(View(key));
    entry.isSet = text != nullptr;
    entry.text = View(text);
    entry.walkPosition = 0;
}

bool Options::SetFromText(const char* keyAndValue)
{
    const bool isSet = SetFromLine(View(keyAndValue));
    if (!isSet) {
        Report(MessageLevel::Error, "option '", View(keyAndValue), "' does not have the form Key=Value");
    }
    return isSet;
}

bool Options::SetFromLine(std::string_view line)
{
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return false;
    }
    const std::string_view key = Trimmed(line.substr(0, equals));
    if (key.empty()) {
        return false;
    }
    const EngineString value(WithoutQuotes(Trimmed(line.substr(equals + 1))));
    Set(EngineString(key).c_str(), value.c_str());
    return true;
}

bool Options::ReadFile(const char* path, int* badLine)
{
    int firstBadLine = 0;
    EngineString content;
    const bool isRead = ReadWhole(path, content);
    if (isRead) {
        std::string_view rest = content;
        for (int lineNumber = 1; !rest.empty(); ++lineNumber) {
            const std::size_t length = std::min(rest.find('\n'), rest.size());
            const std::string_view line = Trimmed(rest.substr(0, length));
            rest.remove_prefix(std::min(length + 1, rest.size()));
            if (!IsIdle(line) && !SetFromLine(line)) {
                Report(MessageLevel::Warning, "option file '", path, "', line ", lineNumber, ": '", line,
                    "' does not have the form Key=Value");
                firstBadLine = firstBadLine == 0 ? lineNumber : firstBadLine;
            }
        }
    }
    else {
        Report(MessageLevel::Error, "option file '", View(path), "' cannot be read, or is larger than 1 MiB");
    }
    if (badLine != nullptr) {
        *badLine = firstBadLine;
    }
    return isRead && firstBadLine == 0;
}

bool Options::ReadCommandLine(int argumentCount, const char* const* arguments)
{
    bool allGood = true;
    // The first is the program's name.
    for (int i = 1; i < argumentCount; ++i) {
        const std::string_view argument = View(arguments[i]);
        if (argument == "--") {
            break;
        }
        if (argument == commandLineOption) {
            ++i;
            allGood = SetFromText(i < argumentCount ? arguments[i] : nullptr) && allGood;
        }
        else if (argument.starts_with(commandLineOption) && argument[commandLineOption.size()] == '=') {
            allGood = SetFromText(arguments[i] + commandLineOption.size() + 1) && allGood;
        }
    }
    return allGood;
}

bool Options::Get(const char* key, int& value, int defaultValue) const
{
    value = defaultValue;
    const Entry* const entry = Read(View(key));
    if (entry == nullptr) {
        return false;
    }
    std::string_view number = Trimmed(entry->text);
    if (number.starts_with('+') && !number.starts_with("+-")) {
        number.remove_prefix(1);
    }
    int read = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), read);
    if (error != std::errc() || end != number.data() + number.size()) {
        Report(MessageLevel::Warning, "option ", key, "=", entry->text,
            ": expected a 32-bit integer; using the default ", defaultValue);
        return false;
    }
    value = read;
    return true;
}

bool Options::Get(const char* key, String& value, const char* defaultValue) const
{
    const Entry* const entry = Read(View(key));
    value.Set(entry != nullptr ? entry->text.c_str() : defaultValue);
    return entry != nullptr;
}

void Options::SetSeperators(const char* key, const char* separators)
{
    if (View(key).empty()) {
        return;
    }
    Entry& entry = FindOrAdd(View(key));
    entry.separators = View(separators);
    entry.walkPosition = 0;
}

bool Options::GetNext(const char* key, String& value) const
{
    const Entry* const entry = Read(View(key));
    if (entry == nullptr) {
        return false;
    }
    const std::string_view text = entry->text;
    while (entry->walkPosition < text.size()) {
        const std::size_t first = entry->walkPosition;
        const std::size_t end = std::min(text.find_first_of(entry->separators, first), text.size());
        entry->walkPosition = end + 1;
        const std::string_view item = Trimmed(text.substr(first, end - first));
        if (!item.empty()) {
            value.Set(EngineString(item).c_str());
            return true;
        }
    }
    return false;
}

void Options::ReportUnread() const
{
    for (const Entry& entry : entries) {
        if (entry.isSet && !entry.wasRead) {
            Report(MessageLevel::Note, "option ", entry.key, "=", entry.text,
                ": no option of this name has been read so far");
        }
    }
}

const Options::Entry* Options::Read(std::string_view key) const
{
    for (const Entry& entry : entries) {
        if (entry.key == key) {
            entry.wasRead = true;
            return entry.isSet ? &entry : nullptr;
        }
    }
    return nullptr;
}

Options::Entry& Options::FindOrAdd(std::string_view key)
{
    for (Entry& entry : entries) {
        if (entry.key == key) {
            return entry;
        }
    }
    entries.emplace_back().key = key;
    return entries.back();
}

} // namespace Quon
