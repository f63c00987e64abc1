#include "harmonet/engine/String.h"

#include <algorithm>

namespace Quon
{

void String::Ins(const char* inserted, unsigned int position)
{
    if (inserted != nullptr) {
        text.insert(std::min<std::size_t>(position, text.size()), inserted);
    }
}

void String::Set(const char* newText)
{
    text = newText != nullptr ? newText : "";
}

} // namespace Quon
