#pragma once

#include "harmonet/engine/Export.h"

#include <array>
#include <cstdint>

namespace Quon
{

/// A 128-bit identifier of a plug-in type: a plain value.
class HARMONET_ENGINE_API UId
{
public:
    /// Constructs the zero identifier.
    UId() = default;

    /// Parses the form "6B7E2180-3F4C-41A7-8C2D-5E19A07C33D1", with letters in either case. Any other text,
    /// and null, yield the zero identifier.
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
