#include "harmonet/engine/windows/Utf16.h"

#include "harmonet/engine/windows/System.h"

#include <limits>

namespace Quon
{

bool ToUtf16(std::string_view text, std::wstring& wide)
{
    wide.clear();
    if (text.empty()) {
        return true;
    }
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return false;
    }
    const int bytes = static_cast<int>(text.size());
    const int units = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), bytes, nullptr, 0);
    wide.resize(static_cast<std::size_t>(units));
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), bytes, wide.data(), units);
    return units > 0;
}

EngineString ToUtf8(std::wstring_view wide)
{
    EngineString text;
    if (!wide.empty()) {
        const int units = static_cast<int>(wide.size());
        const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
        text.resize(static_cast<std::size_t>(bytes));
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, text.data(), bytes, nullptr, nullptr);
    }
    return text;
}

} // namespace Quon
