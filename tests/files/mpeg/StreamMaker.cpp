#include "StreamMaker.h"

#include "harmonet/files/mpeg/StandardTables.h"

#include <algorithm>
#include <cmath>

namespace StreamMaker
{

namespace
{

/// One random frame after another, with the reservoir that they leave.
class RandomFrames
{
    static constexpr int mostScaleFactorBits = 180;

public:
    RandomFrames(std::mt19937& newRandom, const Header& newHeader)
        : random(newRandom)
        , header(newHeader)
    {
    }

    Bytes Make()
    {
        // It counts in joint stereo alone.
        header.modeExtension = Pick(0, 3);
        const std::size_t headBytes = 4 + (header.hasCrc ? 2 : 0) + header.GetSideInfoBytes();
        const int newBytes = static_cast<int>(header.GetFrameBytes() - headBytes);
        const int mainDataBegin = Pick(0, std::min(reservoir, header.isMpeg1 ? 511 : 255));
        BitWriter writer;
        for (unsigned char byte : header.MakeBytes()) {
            writer.Put(byte, 8);
        }
        if (header.hasCrc) {
            writer.Put(Pick(0, 0xFFFF), 16);
        }
        // Scale factors alone can take more bits than a granule is given: none may lie behind the frame.
        PutSideInfo(writer, mainDataBegin, 8 * (newBytes + mainDataBegin) - mostScaleFactorBits);
        writer.PadTo(headBytes);
        for (int i = 0; i < newBytes; ++i) {
            writer.Put(Pick(0, 255), 8);
        }
        // No frame begins ahead of the one before it.
        reservoir = mainDataBegin + newBytes;
        return writer.GetBytes();
    }

private:
    int Pick(int from, int to) { return std::uniform_int_distribution(from, to)(random); }

    void PutSideInfo(BitWriter& writer, int mainDataBegin, int bitsHeld)
    {
        const int channels = header.mode == 3 ? 1 : 2;
        const int parts = channels * (header.isMpeg1 ? 2 : 1);
        writer.Put(mainDataBegin, header.isMpeg1 ? 9 : 8);
        if (header.isMpeg1) {
            writer.Put(Pick(0, 7), channels == 1 ? 5 : 3);
            for (int channel = 0; channel < channels; ++channel) {
                writer.Put(Pick(0, 15), 4);
            }
        }
        else {
            writer.Put(0, channels);
        }
        for (int part = 0; part < parts; ++part) {
            PutGranule(writer, std::min(bitsHeld / parts, 4095));
        }
    }

    void PutGranule(BitWriter& writer, int mostBits)
    {
        const bool switched = Pick(0, 2) != 0;
        const int smallTables = Pick(0, 1);
        int tables[3];
        int largest = 1;
        for (int& table : tables) {
            table = smallTables != 0 ? Pick(0, 15) : Pick(0, 31);
            largest = std::max(largest, 15 + (1 << Quon::huffmanSources[table].linbits));
        }
        const int loudest = static_cast<int>(4 * std::log2(std::pow(largest, 4.0 / 3.0)));
        writer.Put(Pick(0, 7) == 0 ? Pick(0, 200) : Pick(mostBits / 2, mostBits), 12);
        writer.Put(Pick(0, 290), 9);
        writer.Put(Pick(180, 200) - loudest, 8);
        writer.Put(Pick(0, header.isMpeg1 ? 15 : 511), header.isMpeg1 ? 4 : 9);
        writer.Put(switched, 1);
        if (switched) {
            writer.Put(Pick(1, 3), 2);
            writer.Put(Pick(0, 1), 1);
            writer.Put(tables[0], 5);
            writer.Put(tables[1], 5);
            for (int window = 0; window < 3; ++window) {
                writer.Put(Pick(0, 2), 3);
            }
        }
        else {
            for (int table : tables) {
                writer.Put(table, 5);
            }
            writer.Put(Pick(0, 15), 4);
            writer.Put(Pick(0, 7), 3);
        }
        if (header.isMpeg1) {
            writer.Put(Pick(0, 1), 1);
        }
        writer.Put(Pick(0, 1), 1);
        writer.Put(Pick(0, 1), 1);
    }

    std::mt19937& random;
    Header header;
    int reservoir = 0;
};

} // namespace

void BitWriter::Put(int value, int bitCount)
{
    for (int bit = bitCount - 1; bit >= 0; --bit) {
        if (bitsInLast == 8) {
            bytes.push_back(0);
            bitsInLast = 0;
        }
        ++bitsInLast;
        bytes.back() |= static_cast<unsigned char>((bit < 31 ? value >> bit & 1 : 0) << (8 - bitsInLast));
    }
}

void BitWriter::PadTo(std::size_t byteCount)
{
    bytes.resize(byteCount);
    bitsInLast = 8;
}

Bytes Header::MakeBytes() const
{
    BitWriter writer;
    writer.Put(0x7FF, 11);
    writer.Put(isMpeg1 ? 3 : 2, 2);
    writer.Put(1, 2);
    writer.Put(hasCrc ? 0 : 1, 1);
    writer.Put(bitrateIndex, 4);
    writer.Put(rateIndex, 2);
    writer.Put(padding, 1);
    writer.Put(0, 1);
    writer.Put(mode, 2);
    writer.Put(modeExtension, 2);
    writer.Put(0, 4);
    return writer.GetBytes();
}

std::size_t Header::GetFrameBytes() const
{
    const int version = isMpeg1 ? 0 : 1;
    const int bytes = (isMpeg1 ? 144000 : 72000) * Quon::bitratesKbps[version][bitrateIndex] /
        Quon::sampleRatesHz[version][rateIndex];
    return static_cast<std::size_t>(bytes + (padding ? 1 : 0));
}

std::size_t Header::GetSideInfoBytes() const
{
    return isMpeg1 ? (mode == 3 ? 17 : 32) : (mode == 3 ? 9 : 17);
}

Bytes MakeSilentFrame(const Header& header)
{
    return MakeFrameWithReservoir(header, 0);
}

Bytes MakeFrameWithReservoir(const Header& header, int mainDataBegin)
{
    BitWriter writer;
    for (unsigned char byte : header.MakeBytes()) {
        writer.Put(byte, 8);
    }
    if (header.hasCrc) {
        writer.Put(0, 16);
    }
    writer.Put(mainDataBegin, header.isMpeg1 ? 9 : 8);
    writer.PadTo(header.GetFrameBytes());
    return writer.GetBytes();
}

Bytes MakeRandomStream(std::mt19937& random, Header header, int frameCount)
{
    Bytes stream;
    RandomFrames frames(random, header);
    for (int i = 0; i < frameCount; ++i) {
        const Bytes frame = frames.Make();
        stream.insert(stream.end(), frame.begin(), frame.end());
    }
    return stream;
}

} // namespace StreamMaker
