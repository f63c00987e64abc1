#include "harmonet/engine/PString.h"

namespace Quon
{

PStringCache* PString::cache = nullptr;

PString::PString(const char* text)
    : PString(text != nullptr ? std::string_view(text) : std::string_view())
{
}

PString::PString(std::string_view text)
{
    if (PStringCache* const store = PStringCache::Get()) {
        node = store->Create(text);
    }
}

void PString::Release()
{
    if (cache != nullptr) {
        cache->Destroy(node);
    }
}

} // namespace Quon
