#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Tool
{

/// Converts UTF-8 text to a path. A path constructed from a `std::string` would interpret it in the system's
/// code page, which only some standard libraries on Windows treat as UTF-8.
inline std::filesystem::path ToPath(std::string_view text)
{
    return std::u8string(text.begin(), text.end());
}

inline std::string ToText(const std::u8string& text)
{
    return {text.begin(), text.end()};
}

/// Returns the path as UTF-8 text.
inline std::string ToText(const std::filesystem::path& path)
{
    return ToText(path.u8string());
}

} // namespace Tool
