#pragma once

#include "harmonet/engine/Alloc.h"

#include <string>
#include <string_view>

namespace Quon
{

/// Text as the system takes it. False, and \p wide empty, if the text is not UTF-8.
bool ToUtf16(std::string_view text, std::wstring& wide);

/// A surrogate without its other half becomes U+FFFD.
EngineString ToUtf8(std::wstring_view wide);

} // namespace Quon
