#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace Quon
{

/// Little-endian numbers of wave files, at any address and on any machine.
inline std::uint16_t LoadLittle16(const unsigned char* bytes)
{
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

inline std::int16_t LoadLittleSigned16(const unsigned char* bytes)
{
    return static_cast<std::int16_t>(LoadLittle16(bytes));
}

inline std::uint32_t LoadLittle32(const unsigned char* bytes)
{
    return LoadLittle16(bytes) | static_cast<std::uint32_t>(LoadLittle16(bytes + 2)) << 16;
}

inline void StoreLittle16(unsigned char* bytes, int number)
{
    auto low = static_cast<std::uint16_t>(number);
    if constexpr (std::endian::native == std::endian::big) {
        low = static_cast<std::uint16_t>(low << 8 | low >> 8);
    }
    std::memcpy(bytes, &low, sizeof low);
}

} // namespace Quon
