#pragma once

#include "harmonet/engine/Export.h"

#include <array>
#include <cstdint>

namespace Quon
{

/// A 128-bit identifier by which plug-in types are told apart for good: a plain value.
class HARMONET_ENGINE_API UId
{
public:
    /// The zero identifier.
    UId() = default;

    /// Reads the form "6B7E2180-3F4C-41A7-8C2D-5E19A07C33D1", letters in either case. Any other text, and
    /// null, give the zero identifier.
    explicit UId(const char* text);

    bool operator==(const UId&) const = default;

    /// Whether it is the zero identifier.
    bool IsZero() const { return *this == UId(); }

    /// The 16 bytes in the order of the text.
    const std::array<std::uint8_t, 16>& GetBytes() const { return bytes; }

private:
    std::array<std::uint8_t, 16> bytes{};
};

} // namespace Quon
