#pragma once

namespace Quon
{

/// Reads unsigned fields from a block of bytes, the most significant bit first. It borrows the bytes and does
/// not check their end: the caller's bit budgets keep it within them, and each read accesses the three bytes
/// at the position.
class BitReader
{
public:
    void Set(const unsigned char* bytes)
    {
        bitPointer = bytes;
        bitOffset = 0;
    }

    /// Returns the next `n` bits, 0 to 16. 0 reads nothing and returns 0.
    unsigned GetBits(int n)
    {
        if (n == 0) {
            return 0;
        }
        const unsigned window = bitPointer[0] << 16 | bitPointer[1] << 8 | bitPointer[2];
        const unsigned bits = (window << bitOffset & 0xFFFFFFU) >> (24 - n);
        Move(n);
        return bits;
    }

    /// Moves back by `n` bits, which must have been read.
    void UngetBits(int n) { Move(-n); }

    /// Moves forward by any number of bits, or back by a negative one.
    void Move(int n)
    {
        const int position = bitOffset + n;
        bitPointer += position >> 3;
        bitOffset = position & 7;
    }

    const unsigned char* BitPointer() const { return bitPointer; }
    int BitOffset() const { return bitOffset; }

private:
    const unsigned char* bitPointer = nullptr;
    int bitOffset = 0;
};

} // namespace Quon
