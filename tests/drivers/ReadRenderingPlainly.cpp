#include "tests/drivers/OfflineRig.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace Quon
{

namespace
{

constexpr std::size_t headBytes = 44;

class Bytes
{
public:
    explicit Bytes(const std::string& path)
    {
        std::ifstream file(std::filesystem::path(path), std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
    }

    std::size_t GetCount() const { return bytes.size(); }
    std::string_view GetText(std::size_t offset) const { return std::string_view(bytes).substr(offset, 4); }
    unsigned GetNumber(std::size_t offset, int count) const
    {
        unsigned number = 0;
        for (int i = count - 1; i >= 0; --i) {
            number = number << 8 | static_cast<unsigned char>(bytes[offset + static_cast<std::size_t>(i)]);
        }
        return number;
    }

private:
    std::string bytes;
};

} // namespace

Rendering ReadRendering(const std::string& path)
{
    Rendering read;
    const Bytes bytes(path);
    if (bytes.GetCount() < headBytes || bytes.GetText(0) != "RIFF" || bytes.GetText(8) != "WAVE" ||
        bytes.GetText(12) != "fmt " || bytes.GetNumber(16, 4) != 16 || bytes.GetText(36) != "data") {
        ADD_FAILURE() << path << " is no sound file";
        return read;
    }
    EXPECT_EQ(bytes.GetNumber(4, 4), bytes.GetCount() - 8);
    EXPECT_EQ(bytes.GetNumber(40, 4), bytes.GetCount() - headBytes);
    read.channels = static_cast<int>(bytes.GetNumber(22, 2));
    read.rateHz = static_cast<int>(bytes.GetNumber(24, 4));
    read.isSigned16 = bytes.GetNumber(20, 2) == 1 && bytes.GetNumber(34, 2) == 16;
    for (std::size_t offset = headBytes; offset + 2 <= bytes.GetCount(); offset += 2) {
        read.samples.push_back(static_cast<std::int16_t>(bytes.GetNumber(offset, 2)) / 32768.0);
    }
    return read;
}

} // namespace Quon
