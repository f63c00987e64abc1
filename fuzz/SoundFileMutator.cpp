// Mutates sound files so that most of them still open: moves, copies and drops whole MPEG frames and blocks
// of samples, sets header fields to valid values, and leaves the rest to libFuzzer.

#include "fuzz/game/Dice.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace Quon
{

namespace
{

using Bytes = std::vector<unsigned char>;

constexpr std::size_t riffHeadBytes = 12;
constexpr std::size_t chunkHeadBytes = 8;
constexpr std::size_t mpegHeadBytes = 4;

std::uint32_t Load32(const unsigned char* bytes)
{
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

void Store32(unsigned char* bytes, std::size_t value)
{
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<unsigned char>(value >> (8 * i));
    }
}

bool Has(const Bytes& bytes, std::size_t place, const char* text)
{
    return place + 4 <= bytes.size() && std::memcmp(bytes.data() + place, text, 4) == 0;
}

/// Returns the length of the MPEG frame with the header at `head`; 0 if there is no header.
std::size_t MpegFrameBytes(const unsigned char* head)
{
    constexpr int ratesKbps[2][15] = {{0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
        {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}};
    constexpr int ratesHz[] = {44100, 48000, 32000};
    const int version = head[1] >> 3 & 3;
    const int bitrate = head[2] >> 4;
    const int rate = head[2] >> 2 & 3;
    if (head[0] != 0xFF || (head[1] & 0xE6) != 0xE2 || version < 2 || bitrate == 0 || bitrate == 15 ||
        rate == 3) {
        return 0;
    }
    const bool isMpeg1 = version == 3;
    const int bits = ratesKbps[isMpeg1 ? 0 : 1][bitrate] * 1000 * (isMpeg1 ? 144 : 72);
    return static_cast<std::size_t>(
        bits / (isMpeg1 ? ratesHz[rate] : ratesHz[rate] / 2) + (head[2] >> 1 & 1));
}

/// A sound file cut into everything before the sound data, and its frames or blocks.
struct Cut
{
    Bytes front; ///< Includes the header of the data chunk, if there is one.
    std::vector<Bytes> pieces;
    bool isMpeg = false;
    bool isWave = false;
};

std::size_t FindData(const Bytes& bytes, std::size_t& blockAlign, int& tag)
{
    std::size_t place = riffHeadBytes;
    while (place + chunkHeadBytes <= bytes.size()) {
        if (Has(bytes, place, "data")) {
            return place + chunkHeadBytes;
        }
        if (Has(bytes, place, "fmt ") && place + chunkHeadBytes + 14 <= bytes.size()) {
            tag = bytes[place + chunkHeadBytes];
            blockAlign = bytes[place + chunkHeadBytes + 12] | bytes[place + chunkHeadBytes + 13] << 8U;
        }
        place += chunkHeadBytes + Load32(bytes.data() + place + 4);
    }
    return riffHeadBytes;
}

std::size_t PieceBytes(const Bytes& bytes, std::size_t place, bool isMpeg, std::size_t blockAlign)
{
    const std::size_t left = bytes.size() - place;
    if (!isMpeg) {
        return std::min(left, blockAlign);
    }
    const std::size_t frame = left >= mpegHeadBytes ? MpegFrameBytes(bytes.data() + place) : 0;
    if (frame != 0) {
        return std::min(left, frame);
    }
    std::size_t next = 1;
    while (next < left && (left - next < mpegHeadBytes || MpegFrameBytes(bytes.data() + place + next) == 0)) {
        ++next;
    }
    return next;
}

Cut CutFile(const Bytes& bytes)
{
    constexpr int tagMpeg = 85;
    Cut cut;
    std::size_t place = 0;
    std::size_t blockAlign = 0;
    int tag = 0;
    cut.isWave = Has(bytes, 0, "RIFF") && bytes.size() >= riffHeadBytes;
    if (cut.isWave) {
        place = std::min(FindData(bytes, blockAlign, tag), bytes.size());
    }
    cut.isMpeg = !cut.isWave || tag == tagMpeg;
    // The block size of PCM is too small for a piece.
    blockAlign = std::max<std::size_t>(blockAlign, 64);
    cut.front.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(place));
    while (place < bytes.size()) {
        const std::size_t length = PieceBytes(bytes, place, cut.isMpeg, blockAlign);
        const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(place);
        cut.pieces.emplace_back(start, start + static_cast<std::ptrdiff_t>(length));
        place += length;
    }
    return cut;
}

/// Joins the pieces and corrects the sizes in the RIFF header and the data chunk.
Bytes Join(const Cut& cut)
{
    Bytes bytes = cut.front;
    for (const Bytes& piece : cut.pieces) {
        bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    if (cut.isWave && bytes.size() >= riffHeadBytes) {
        Store32(bytes.data() + 4, bytes.size() - chunkHeadBytes);
        const std::size_t front = cut.front.size();
        if (front >= riffHeadBytes + chunkHeadBytes) {
            Store32(bytes.data() + front - 4, bytes.size() - front);
        }
    }
    return bytes;
}

class Mutation
{
public:
    Mutation(Cut& newCut, unsigned int seed)
        : cut(newCut)
        , dice(seed)
    {
    }

    void Run()
    {
        if (cut.pieces.empty()) {
            return ChangeBytes(cut.front);
        }
        switch (dice.Draw(8)) {
        case 0:
            cut.pieces.erase(cut.pieces.begin() + PickPlace());
            break;
        case 1:
            cut.pieces.insert(cut.pieces.begin() + PickPlace(), Bytes(Pick()));
            break;
        case 2:
            std::swap(Pick(), Pick());
            break;
        case 3:
            SetHeader(Pick());
            break;
        case 4:
            ChangeBytes(cut.front);
            break;
        case 5:
            if (cut.isMpeg) {
                SetSideInfo(Pick());
            }
            break;
        default:
            ChangeBytes(Pick());
        }
    }

private:
    std::ptrdiff_t PickPlace() { return dice.Draw(static_cast<int>(cut.pieces.size())); }
    Bytes& Pick() { return cut.pieces[static_cast<std::size_t>(PickPlace())]; }

    // Keeps the length, so that the data after it does not move.
    static void ChangeBytes(Bytes& bytes)
    {
        if (!bytes.empty()) {
            LLVMFuzzerMutate(bytes.data(), bytes.size(), bytes.size());
        }
    }

    /// Sets another valid header, and cuts or pads the frame to its new length.
    void SetHeader(Bytes& frame)
    {
        if (!cut.isMpeg || frame.size() < mpegHeadBytes) {
            // The header of an ADPCM block: predictor and delta.
            for (std::size_t i = 0; i < std::min<std::size_t>(frame.size(), 2); ++i) {
                frame[i] = static_cast<unsigned char>(dice.Draw(9));
            }
            return;
        }
        frame[0] = 0xFF;
        frame[1] = static_cast<unsigned char>(0xF2 | dice.Draw(2) << 3 | dice.Draw(2));
        frame[2] =
            static_cast<unsigned char>((1 + dice.Draw(14)) << 4 | dice.Draw(3) << 2 | dice.Draw(2) << 1);
        frame[3] = static_cast<unsigned char>(dice.Draw(16) << 4);
        frame.resize(std::max(MpegFrameBytes(frame.data()), mpegHeadBytes));
    }

    /// Changes some bits of the side information: bit counts, tables and gains of the granules.
    void SetSideInfo(Bytes& frame)
    {
        for (int i = 0; i < 4; ++i) {
            const auto place = mpegHeadBytes + static_cast<std::size_t>(dice.Draw(34));
            if (place < frame.size()) {
                frame[place] = static_cast<unsigned char>(dice.Draw(256));
            }
        }
    }

    Cut& cut;
    SeededDice dice;
};

} // namespace

} // namespace Quon

extern "C" std::size_t LLVMFuzzerCustomMutator(
    std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned int seed)
{
    // libFuzzer itself makes one mutation in eight.
    if (seed % 8 == 0) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    Quon::Cut cut = Quon::CutFile({data, data + size});
    Quon::Mutation(cut, seed).Run();
    Quon::Bytes bytes = Quon::Join(cut);
    bytes.resize(std::min(bytes.size(), maxSize));
    std::copy(bytes.begin(), bytes.end(), data);
    return bytes.size();
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* first, std::size_t firstSize,
    const std::uint8_t* second, std::size_t secondSize, std::uint8_t* out, std::size_t maxSize,
    unsigned int seed)
{
    Quon::Cut cut = Quon::CutFile({first, first + firstSize});
    const Quon::Cut other = Quon::CutFile({second, second + secondSize});
    Quon::SeededDice dice(seed);
    const int from = dice.Draw(static_cast<int>(other.pieces.size()));
    const auto count = std::min<std::size_t>(other.pieces.size() - static_cast<std::size_t>(from), 4);
    cut.pieces.insert(cut.pieces.begin() + dice.Draw(static_cast<int>(cut.pieces.size())),
        other.pieces.begin() + from, other.pieces.begin() + from + static_cast<std::ptrdiff_t>(count));
    Quon::Bytes bytes = Quon::Join(cut);
    bytes.resize(std::min(bytes.size(), maxSize));
    std::copy(bytes.begin(), bytes.end(), out);
    return bytes.size();
}
