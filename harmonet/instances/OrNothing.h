#pragma once

#include <new>

namespace Quon
{

/// Runs an operation that answers false, 0 or null when it fails, and gives that answer too when there is no
/// memory. The operation has put everything back by then.
template<class Operation>
auto OrNothing(Operation operation) -> decltype(operation())
{
    try {
        return operation();
    }
    catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace Quon
