#pragma once

#include <cstdint>

namespace Quon
{

/// The capabilities of an output driver: 16 flags in two bytes, filled in by the driver. Users of the library
/// know it as `SoundSystem::Caps`.
///
/// The library reads one flag, capEnvReverbSource; the others are passed through to the host.
struct SoundCaps
{
    std::uint8_t low = 0; ///< Flags 0x0001 to 0x0080.
    std::uint8_t high = 0; ///< Flags 0x0100 to 0x8000.

    /// The 16 flags as one number, with `high` in the upper byte.
    unsigned int GetFlags() const { return static_cast<unsigned int>(high) << 8 | low; }

    /// Stores the lowest 16 bits of `flags`.
    void SetFlags(unsigned int flags)
    {
        low = static_cast<std::uint8_t>(flags);
        high = static_cast<std::uint8_t>(flags >> 8);
    }
};

/// The driver can apply properties of an environmental reverb to single sources.
inline constexpr unsigned int capEnvReverbSource = 0x0400;

} // namespace Quon
