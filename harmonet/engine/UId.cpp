#include "harmonet/engine/UId.h"

#include <string_view>

namespace Quon
{

namespace
{

constexpr std::string_view form = "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX";

/// Returns -1 for anything but a hexadecimal digit.
int DigitValue(char character)
{
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    if (character >= 'A' && character <= 'F') {
        return character - 'A' + 10;
    }
    if (character >= 'a' && character <= 'f') {
        return character - 'a' + 10;
    }
    return -1;
}

} // namespace

UId::UId(const char* text)
{
    if (text == nullptr || std::string_view(text).size() != form.size()) {
        return;
    }
    std::array<std::uint8_t, 16> read{};
    std::size_t digitCount = 0;
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] == '-') {
            if (text[i] != '-') {
                return;
            }
            continue;
        }
        const int value = DigitValue(text[i]);
        if (value < 0) {
            return;
        }
        std::uint8_t& byte = read[digitCount / 2];
        byte = static_cast<std::uint8_t>(byte * 16 + value);
        ++digitCount;
    }
    bytes = read;
}

} // namespace Quon
