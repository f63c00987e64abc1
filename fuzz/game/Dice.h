#pragma once

#include <cstdint>
#include <span>

namespace Quon
{

/// Where a game and a fuzz target take their decisions from. The same source gives the same decisions with
/// every compiler, which the distributions of the standard library do not promise.
class Dice
{
public:
    Dice() = default;
    Dice(const Dice&) = delete;
    Dice& operator=(const Dice&) = delete;
    virtual ~Dice() = default;

    /// A number from 0 to `below` - 1; 0 for a `below` of 1 or less.
    int Draw(int below);
    /// Whether there is nothing more to decide from.
    virtual bool IsAtEnd() const { return false; }
    bool Chance(int percent) { return Draw(100) < percent; }

    template<class Value, std::size_t count>
    const Value& Pick(const Value (&values)[count])
    {
        return values[Draw(static_cast<int>(count))];
    }

protected:
    /// A number from 0 to `most` or above it, of which the caller takes the remainder.
    virtual std::uint64_t DrawNumber(std::uint32_t most) = 0;
};

/// Decisions from a seed, without end.
class SeededDice final : public Dice
{
public:
    explicit SeededDice(std::uint64_t seed)
        : state(seed)
    {
    }

protected:
    std::uint64_t DrawNumber(std::uint32_t most) override;

private:
    std::uint64_t state;
};

/// Decisions from bytes, which are borrowed: as few bytes for each as it needs. Behind the last byte every
/// decision is 0.
class ByteDice final : public Dice
{
public:
    explicit ByteDice(std::span<const unsigned char> newBytes)
        : bytes(newBytes)
    {
    }

    bool IsAtEnd() const override { return bytes.empty(); }

protected:
    std::uint64_t DrawNumber(std::uint32_t most) override;

private:
    std::span<const unsigned char> bytes;
};

/// FNV-1a, 64 bits.
class Digest
{
public:
    void Add(std::span<const unsigned char> bytes);
    /// The low 32 bits, the lowest byte first.
    void Add(std::int64_t number);
    std::uint64_t Get() const { return value; }

private:
    std::uint64_t value = 0xCBF29CE484222325;
};

} // namespace Quon
