#pragma once

#include <random>
#include <vector>

/// Makes MPEG frames for the tests, bit by bit.

namespace StreamMaker
{

using Bytes = std::vector<unsigned char>;

class BitWriter
{
public:
    void Put(int value, int bitCount);
    void PadTo(std::size_t byteCount);
    const Bytes& GetBytes() const { return bytes; }

private:
    Bytes bytes;
    int bitsInLast = 8;
};

/// The four bytes of a frame header. `mode` 0 stereo, 1 joint stereo, 3 mono.
struct Header
{
    bool isMpeg1 = true;
    int bitrateIndex = 9;
    int rateIndex = 0;
    int mode = 3;
    int modeExtension = 0;
    bool hasCrc = false;
    bool padding = false;

    Bytes MakeBytes() const;
    std::size_t GetFrameBytes() const;
    std::size_t GetSideInfoBytes() const;
    int GetSampleFrames() const { return isMpeg1 ? 1152 : 576; }
};

/// A frame with empty side information: it decodes to silence.
Bytes MakeSilentFrame(const Header& header);
/// The same, with main data that begin so many bytes ahead of the frame.
Bytes MakeFrameWithReservoir(const Header& header, int mainDataBegin);

/// Frames whose side information and main data are random, but for sizes that fit and gains that keep the
/// sound at about full scale: every kind of block, table, scale factor and stereo mode turns up.
Bytes MakeRandomStream(std::mt19937& random, Header header, int frameCount);

} // namespace StreamMaker
