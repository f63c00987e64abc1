#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Tool
{

/// The path that a text in UTF-8 names. A path made from a `std::string` would take it for text in the code
/// page of the system, which some standard libraries on Windows take for UTF-8 and others do not.
inline std::filesystem::path ToPath(std::string_view text)
{
    return std::u8string(text.begin(), text.end());
}

inline std::string ToText(const std::u8string& text)
{
    return {text.begin(), text.end()};
}

/// The path as text in UTF-8.
inline std::string ToText(const std::filesystem::path& path)
{
    return ToText(path.u8string());
}

} // namespace Tool
