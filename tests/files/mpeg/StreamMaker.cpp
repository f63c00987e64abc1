#include "StreamMaker.h"

#include "harmonet/files/mpeg/StandardTables.h"

#include <algorithm>
#include <cmath>

namespace
{

class BitWriter
{
public:
    void Put(int value, int bitCount)
    {
        for (int bit = bitCount - 1; bit >= 0; --bit, ++bits) {
            if (bits % 8 == 0) {
                bytes.push_back(0);
            }
            bytes.back() |= static_cast<unsigned char>((value >> bit & 1) << (7 - bits % 8));
        }
    }
    void PadTo(std::size_t byteCount)
    {
        bytes.resize(byteCount);
        bits = 0;
    }
    const Bytes& GetBytes() const { return bytes; }

private:
    Bytes bytes;
    int bits = 0;
};

/// The frame's header, and room for the CRC if there is one.
BitWriter BeginFrame(const FrameForm& form, int modeExtension)
{
    BitWriter writer;
    writer.Put(0x7FF, 11);
    writer.Put(form.isMpeg1 ? 3 : 2, 2);
    writer.Put(1, 2);
    writer.Put(form.hasCrc ? 0 : 1, 1);
    writer.Put(form.bitrateIndex, 4);
    writer.Put(form.rateIndex, 2);
    writer.Put(form.padding, 1);
    writer.Put(0, 1);
    writer.Put(form.mode, 2);
    writer.Put(modeExtension, 2);
    writer.Put(0, form.hasCrc ? 4 + 16 : 4);
    return writer;
}

/// One random frame after another, with the reservoir that they leave.
class RandomFrames
{
    static constexpr int mostScaleFactorBits = 180;

public:
    RandomFrames(std::mt19937& newRandom, const FrameForm& newForm)
        : random(newRandom)
        , form(newForm)
    {
    }

    Bytes Make()
    {
        // The mode extension counts in joint stereo alone.
        BitWriter writer = BeginFrame(form, Pick(0, 3));
        const int sideInfoBytes = form.isMpeg1 ? (form.mode == 3 ? 17 : 32) : (form.mode == 3 ? 9 : 17);
        const std::size_t headBytes = writer.GetBytes().size() + static_cast<std::size_t>(sideInfoBytes);
        const int newBytes = static_cast<int>(form.GetFrameBytes() - headBytes);
        const int mainDataBegin = Pick(0, std::min(reservoir, form.isMpeg1 ? 511 : 255));
        // Scale factors alone can take more bits than a granule is given: none may lie beyond the frame.
        PutSideInfo(writer, mainDataBegin, 8 * (newBytes + mainDataBegin) - mostScaleFactorBits);
        writer.PadTo(headBytes);
        // Ones are codes of zeros in most tables: spectra with holes, and with ends.
        const int onesOfFour = Pick(0, 4);
        for (int i = 0; i < newBytes; ++i) {
            writer.Put(Pick(1, 4) <= onesOfFour ? 0xFF : Pick(0, 255), 8);
        }
        // No frame begins ahead of the one before it.
        reservoir = mainDataBegin + newBytes;
        return writer.GetBytes();
    }

private:
    int Pick(int from, int to) { return std::uniform_int_distribution(from, to)(random); }

    void PutSideInfo(BitWriter& writer, int mainDataBegin, int bitsHeld)
    {
        const int channels = form.mode == 3 ? 1 : 2;
        const int parts = channels * (form.isMpeg1 ? 2 : 1);
        writer.Put(mainDataBegin, form.isMpeg1 ? 9 : 8);
        writer.Put(Pick(0, 7), !form.isMpeg1 ? channels : channels == 1 ? 5 : 3);
        for (int shared = 0; form.isMpeg1 && shared < 4 * channels; ++shared) {
            writer.Put(Pick(0, 1), 1);
        }
        for (int part = 0; part < parts; ++part) {
            PutGranule(writer, std::min(bitsHeld / parts, 4095));
        }
    }

    void PutGranule(BitWriter& writer, int mostBits)
    {
        const bool switched = Pick(0, 2) != 0;
        const int lastTable = Pick(0, 1) != 0 ? 15 : 31;
        int tables[3];
        int largest = 1;
        for (int& table : tables) {
            table = Pick(0, lastTable);
            largest = std::max(largest, 15 + (1 << Quon::huffmanSources[table].linbits));
        }
        const int loudest = static_cast<int>(4 * std::log2(std::pow(largest, 4.0 / 3.0)));
        writer.Put(Pick(0, 7) == 0 ? Pick(0, 200) : Pick(mostBits / 2, mostBits), 12);
        writer.Put(Pick(0, 290), 9);
        writer.Put(Pick(180, 200) - loudest, 8);
        writer.Put(Pick(0, form.isMpeg1 ? 15 : 511), form.isMpeg1 ? 4 : 9);
        writer.Put(switched, 1);
        if (switched) {
            writer.Put(Pick(1, 3), 2);
            writer.Put(Pick(0, 1), 1);
        }
        for (int region = 0; region < (switched ? 2 : 3); ++region) {
            writer.Put(tables[region], 5);
        }
        if (switched) {
            for (int window = 0; window < 3; ++window) {
                writer.Put(Pick(0, 2), 3);
            }
        }
        else {
            writer.Put(Pick(0, 15), 4);
            writer.Put(Pick(0, 7), 3);
        }
        writer.Put(Pick(0, 7), form.isMpeg1 ? 3 : 2);
    }

    std::mt19937& random;
    const FrameForm form;
    int reservoir = 0;
};

} // namespace

std::size_t FrameForm::GetFrameBytes() const
{
    const int version = isMpeg1 ? 0 : 1;
    const int bytes = (isMpeg1 ? 144000 : 72000) * Quon::bitratesKbps[version][bitrateIndex] /
        Quon::sampleRatesHz[version][rateIndex];
    return static_cast<std::size_t>(bytes + (padding ? 1 : 0));
}

Bytes MakeSilentFrame(const FrameForm& form, int mainDataBegin)
{
    BitWriter writer = BeginFrame(form, 0);
    writer.Put(mainDataBegin, form.isMpeg1 ? 9 : 8);
    writer.PadTo(form.GetFrameBytes());
    return writer.GetBytes();
}

Bytes MakeRandomStream(std::mt19937& random, const FrameForm& form, int frameCount)
{
    Bytes stream;
    RandomFrames frames(random, form);
    for (int i = 0; i < frameCount; ++i) {
        stream = std::move(stream) + frames.Make();
    }
    return stream;
}
