#include "tests/drivers/OfflineRig.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <string_view>

namespace Quon
{

Rendering ReadRendering(const std::string& path)
{
    constexpr std::size_t headBytes = 44;
    Rendering read;
    const std::vector<unsigned char> bytes = ReadBytes(path);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const auto number = [&bytes](std::size_t offset, std::size_t count) {
        unsigned value = 0;
        while (count > 0) {
            value = value << 8 | bytes[offset + --count];
        }
        return value;
    };
    if (bytes.size() < headBytes || !text.starts_with("RIFF") || text.substr(8, 8) != "WAVEfmt " ||
        number(16, 4) != 16 || text.substr(36, 4) != "data") {
        ADD_FAILURE() << path << " is not a sound file";
        return read;
    }
    EXPECT_EQ(number(4, 4), bytes.size() - 8);
    EXPECT_EQ(number(40, 4), bytes.size() - headBytes);
    read.channels = static_cast<int>(number(22, 2));
    read.rateHz = static_cast<int>(number(24, 4));
    read.isSigned16 = number(20, 2) == 1 && number(34, 2) == 16;
    for (std::size_t offset = headBytes; offset + 2 <= bytes.size(); offset += 2) {
        read.samples.push_back(static_cast<std::int16_t>(number(offset, 2)) / 32768.0);
    }
    return read;
}

} // namespace Quon
