#pragma once

#include "harmonet/engine/Alloc.h"

namespace Quon
{

/// A mutable text with value semantics. One thread at a time.
class HARMONET_ENGINE_API String
{
public:
    /// Constructs the empty string.
    String() = default;

    /// Zero-terminated and never null; valid until the text changes.
    const char* GetText() const { return text.c_str(); }

    /// In bytes, without the zero at the end.
    unsigned int GetLength() const { return static_cast<unsigned int>(text.size()); }

    /// Inserts \p inserted, which may be part of this string, at \p position; a position beyond the end
    /// appends. Null is ignored.
    void Ins(const char* inserted, unsigned int position);

    /// Replaces the text; null makes it empty.
    void Set(const char* newText);

    /// Makes the text empty.
    void Clear() { text.clear(); }

private:
    EngineString text;
};

} // namespace Quon
