#include "fuzz/game/Dice.h"

namespace Quon
{

int Dice::Draw(int below)
{
    if (below <= 1) {
        return 0;
    }
    const auto count = static_cast<std::uint32_t>(below);
    return static_cast<int>(DrawNumber(count - 1) % count);
}

// SplitMix64 by Sebastiano Vigna, public domain.
std::uint64_t SeededDice::DrawNumber(std::uint32_t)
{
    state += 0x9E3779B97F4A7C15;
    std::uint64_t mixed = state;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return (mixed ^ (mixed >> 31)) >> 16;
}

std::uint64_t ByteDice::DrawNumber(std::uint32_t maximum)
{
    std::uint64_t number = 0;
    for (std::uint64_t reach = 0; reach < maximum && !bytes.empty(); reach = reach << 8 | 0xFF) {
        number = number << 8 | bytes.front();
        bytes = bytes.subspan(1);
    }
    return number;
}

void Digest::Add(std::span<const unsigned char> bytes)
{
    for (const unsigned char byte : bytes) {
        value = (value ^ byte) * 0x100000001B3;
    }
}

void Digest::Add(std::int64_t number)
{
    unsigned char bytes[4];
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(number);
        number >>= 8;
    }
    Add(bytes);
}

} // namespace Quon
