#include "harmonet/engine/String.h"

#include <algorithm>

namespace Quon
{

void String::Ins(const char* inserted, unsigned int position)
{
    if (inserted != nullptr) {
        // By way of a copy, since the text may be a part of this one.
        text.insert(std::min<std::size_t>(position, text.size()), EngineString(inserted));
    }
}

void String::Set(const char* newText)
{
    text = EngineString(newText != nullptr ? newText : "");
}

} // namespace Quon
