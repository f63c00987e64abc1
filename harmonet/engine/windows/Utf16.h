#pragma once

#include "harmonet/engine/Alloc.h"

#include <string>
#include <string_view>

namespace Quon
{

/// Converts text for the system. Returns false and clears \p wide if the text is not UTF-8.
bool ToUtf16(std::string_view text, std::wstring& wide);

/// An unpaired surrogate becomes U+FFFD.
EngineString ToUtf8(std::wstring_view wide);

} // namespace Quon
