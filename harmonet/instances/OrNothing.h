#pragma once

#include <new>

namespace Quon
{

/// Runs an operation that returns false, 0 or null on failure, and returns the same when memory runs out. The
/// operation must have restored the state before it throws.
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
