#pragma once

#include "harmonet/engine/Alloc.h"

#include <cstddef>

namespace Quon
{

/// Resizes an array that has an element for each sound. It grows by a quarter instead of doubling, since the
/// unused capacity of all these arrays counts for each sound.
template<class T>
void ResizeTo(EngineVector<T>& elements, std::size_t count)
{
    if (count > elements.capacity()) {
        elements.reserve(count + count / 4);
    }
    elements.resize(count);
}

} // namespace Quon
