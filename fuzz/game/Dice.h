#pragma once

#include <cstdint>
#include <span>

namespace Quon
{

/// The source of decisions of a game or a fuzz target. The same seed or bytes give the same decisions with
/// every compiler, which the standard library's distributions do not guarantee.
class Dice
{
public:
    Dice() = default;
    Dice(const Dice&) = delete;
    Dice& operator=(const Dice&) = delete;
    virtual ~Dice() = default;

    /// Returns a number from 0 to `below` - 1; 0 if `below` is 1 or less.
    int Draw(int below);
    /// Returns whether the source is exhausted.
    virtual bool IsAtEnd() const { return false; }
    bool Chance(int percent) { return Draw(100) < percent; }

    template<class Value, std::size_t count>
    const Value& Pick(const Value (&values)[count])
    {
        return values[Draw(static_cast<int>(count))];
    }

protected:
    /// Returns a number from 0 to at least `maximum`. The caller takes the remainder.
    virtual std::uint64_t DrawNumber(std::uint32_t maximum) = 0;
};

/// Endless decisions from a seed.
class SeededDice final : public Dice
{
public:
    explicit SeededDice(std::uint64_t seed)
        : state(seed)
    {
    }

protected:
    std::uint64_t DrawNumber(std::uint32_t maximum) override;

private:
    std::uint64_t state;
};

/// Decisions from bytes, which must outlive the object. Each decision uses as few bytes as possible. After
/// the last byte every decision is 0.
class ByteDice final : public Dice
{
public:
    explicit ByteDice(std::span<const unsigned char> newBytes)
        : bytes(newBytes)
    {
    }

    bool IsAtEnd() const override { return bytes.empty(); }

protected:
    std::uint64_t DrawNumber(std::uint32_t maximum) override;

private:
    std::span<const unsigned char> bytes;
};

/// FNV-1a, 64 bits.
class Digest
{
public:
    void Add(std::span<const unsigned char> bytes);
    /// Adds the low 32 bits, least significant byte first.
    void Add(std::int64_t number);
    std::uint64_t Get() const { return value; }

private:
    std::uint64_t value = 0xCBF29CE484222325;
};

} // namespace Quon
