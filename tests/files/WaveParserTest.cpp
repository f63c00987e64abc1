// Compares the probe and the two parsers with a simple parser: on valid, damaged and unusual wave files.

#include "tests/files/SoundFolder.h"

#include "harmonet/files/SndFileAdpcm.h"
#include "harmonet/files/SndFileHandle.h"
#include "harmonet/files/SndFileWav.h"
#include "harmonet/files/WaveProbe.h"
#include "tests/support/MemorySource.h"

#include <random>

using namespace Quon;

namespace
{

constexpr int pcmTag = 1;
constexpr int adpcmTag = 2;

/// A little-endian number; bytes after the end of the file are 0.
long long Number(const Bytes& file, long long at, int count)
{
    long long number = 0;
    for (long long i = at + count; i-- > at;) {
        number = number * 256 + (i < std::ssize(file) ? file[static_cast<std::size_t>(i)] : 0);
    }
    return number;
}

bool IsAt(const Bytes& file, long long at, std::string_view text)
{
    return at + std::ssize(text) <= std::ssize(file) &&
        std::equal(text.begin(), text.end(), file.begin() + at);
}

/// The offsets of the chunk headers.
std::vector<long long> FindChunks(const Bytes& file)
{
    std::vector<long long> chunks;
    const bool isWave = IsAt(file, 0, "RIFF") && IsAt(file, 8, "WAVE");
    for (long long at = 12; isWave && at + 8 <= std::ssize(file);) {
        chunks.push_back(at);
        const long long size = Number(file, at + 4, 4);
        at += 8 + size + size % 2;
    }
    return chunks;
}

bool HasFormatSize(const Bytes& file, long long chunk)
{
    const long long size = Number(file, chunk + 4, 4);
    return size >= 16 && size <= 50;
}

/// The tag of the first format chunk.
long long PlainProbe(const Bytes& file)
{
    for (const long long chunk : FindChunks(file)) {
        if (IsAt(file, chunk, "fmt ")) {
            const long long tag = Number(file, chunk + 8, 2);
            return HasFormatSize(file, chunk) && (tag == pcmTag || tag == adpcmTag) ? tag : 0;
        }
    }
    return 0;
}

/// The sample frames of a block of ADPCM, two of them in its head.
long long BlockFrames(long long channels, long long bytes)
{
    return 2 + (bytes - 7 * channels) * 2 / channels;
}

struct PlainFormat
{
    PlainFormat(const Bytes& file, long long chunk)
        : tag(Number(file, chunk + 8, 2))
        , channels(Number(file, chunk + 10, 2))
        , rateHz(Number(file, chunk + 12, 4))
        , blockBytes(Number(file, chunk + 20, 2))
        , sampleBytes(Number(file, chunk + 22, 2) / 8)
        , pairs(Number(file, chunk + 28, 2))
        , isWhole(
              HasFormatSize(file, chunk) && (tag == pcmTag || Number(file, chunk + 4, 4) >= 22 + 4 * pairs))
    {
    }

    bool IsPlayable() const
    {
        if (!isWhole || channels < 1 || rateHz < 1 || rateHz > 0x7FFFFFFF) {
            return false;
        }
        return tag == pcmTag ? sampleBytes > 0
                             : channels <= 2 && pairs <= 7 && BlockFrames(channels, blockBytes) > 0;
    }

    long long CountFrames(long long bytes) const
    {
        if (tag == pcmTag) {
            return bytes / (channels * sampleBytes);
        }
        const long long rest = bytes % blockBytes;
        return bytes / blockBytes * BlockFrames(channels, blockBytes) +
            (rest > 7 * channels ? BlockFrames(channels, rest) : 0);
    }

    long long tag;
    long long channels;
    long long rateHz;
    long long blockBytes;
    long long sampleBytes;
    long long pairs;
    bool isWhole;
};

/// The sample frames that the parser for such formats counts; nothing if it refuses the file. It takes the
/// last format in front of the data.
std::optional<long long> PlainCount(const Bytes& file, int tag)
{
    std::optional<PlainFormat> format;
    long long fact = 0;
    for (const long long chunk : FindChunks(file)) {
        if (IsAt(file, chunk, "fmt ")) {
            format.emplace(file, chunk);
            if (format->tag != tag || !format->IsPlayable()) {
                return {};
            }
        }
        else if (IsAt(file, chunk, "fact")) {
            fact = Number(file, chunk + 8, 4);
        }
        else if (IsAt(file, chunk, "data")) {
            if (!format) {
                return {};
            }
            const long long frames = format->CountFrames(Number(file, chunk + 4, 4));
            return std::min(fact >= 1 ? std::min(fact, frames) : frames, 0x7FFFFFFFLL);
        }
    }
    return {};
}

bool IsFrontOf(const Bytes& part, const Bytes& whole)
{
    return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

/// Everything that a sound does with a reader. A second pass must give the same PCM as the first.
void PlayThrough(SndFile& file)
{
    const Bytes pcm = ReadAll(file, 7);
    EXPECT_LE(pcm.size(), std::size_t{1} << 16) << "more came out than ever went in";
    file.Rewind();
    EXPECT_EQ(ReadAll(file, 64), pcm);
    file.Rewind();
    ReadFrames(file, 5);
    const int skipped = file.SkipSamples(6);
    EXPECT_GE(skipped, 0);
    EXPECT_LE(skipped, 6);
    ReadFrames(file, 3);
    EXPECT_LE(file.SkipSamples(1'000'000), std::max(file.GetSoundSamples(), 0));
    ReadFrames(file, 3);
    file.GetRemainLength();
    file.GetCurrentLength();
    file.Rewind();
    if (file.Load() != nullptr) {
        EXPECT_TRUE(IsFrontOf(ReadAll(file, 9), pcm)) << "from memory it sounds otherwise";
    }
}

/// The files of these tests are in memory: there are more than a hundred thousand, and writing each takes a
/// millisecond on some systems.
class WaveParser : public SoundFolder
{
protected:
    WaveParser()
    {
        File::RemoveRoot(owner);
        File::AddRoot(owner, source);
    }

    std::unique_ptr<SndFile> OpenBytes(const Bytes& bytes)
    {
        EXPECT_EQ(openFiles.GetCount(), 0) << "the old file would be found again";
        source->opened.clear();
        source->files["sound"] = bytes;
        return Open("sound");
    }

    void Check(const Bytes& bytes)
    {
        if (const auto file = OpenBytes(bytes)) {
            PlayThrough(*file);
        }
        ASSERT_EQ(openFiles.GetCount(), 0) << "the file stayed open";
        if (SndFileHandle* handle = openFiles.Acquire(owner, "sound")) {
            EXPECT_EQ(ProbeWave(handle), PlainProbe(bytes));
            SndFileWav pcm;
            ExpectCount(pcm, PlainCount(bytes, pcmTag));
            SndFileAdpcm adpcm;
            ExpectCount(adpcm, PlainCount(bytes, adpcmTag));
            EXPECT_EQ(handle->GetUseCount(), 1) << "somebody still holds the file";
            openFiles.Release(handle);
        }
    }

    void ExpectCount(SndFile& file, std::optional<long long> count)
    {
        SndFileHandle* handle = openFiles.Acquire(owner, "sound");
        const bool opens = file.OpenHandle(handle);
        EXPECT_EQ(opens, count.has_value());
        EXPECT_EQ(file.FileType() != SndFile::FileNone, opens);
        EXPECT_EQ(opens ? file.GetSoundSamples() : 0, count.value_or(0));
        if (!opens) {
            openFiles.Release(handle);
        }
        file.CloseFile(0, nullptr);
    }

    const std::shared_ptr<MemorySource> source = std::make_shared<MemorySource>();
    const Bytes pcmFormat = Chunk("fmt ", PcmFormat(2, 8000, 16));
    const Bytes monoFormat = Chunk("fmt ", AdpcmFormat(1, 8000, 15, usualPairs));
    const Bytes stereoFormat = Chunk("fmt ", AdpcmFormat(2, 8000, 24, usualPairs));
    const Bytes blocks = Counting(15) + Counting(15) + Counting(11);
    const Bytes stereoBlocks = Counting(24) + Counting(24) + Counting(20);
    const Bytes samples[3] = {
        Wave(pcmFormat + Chunk("LIST", Bytes(3)) + Chunk("fact", Little32(9)) + Chunk("data", Counting(37))) +
            Chunk("cue ", Bytes(6)),
        Wave(monoFormat + Chunk("fact", Little32(40)) + Chunk("data", blocks)),
        Wave(stereoFormat + Chunk("fact", Little32(40)) + Chunk("data", stereoBlocks))};
};

TEST_F(WaveParser, AcceptsChunksInAnyOrder)
{
    const Bytes data = Chunk("data", blocks);
    const auto withJunk = [&](std::uint32_t statedSize) {
        return Wave(Chunk("JUNK", Bytes(4), statedSize) + pcmFormat + data);
    };
    // Chunks of all small sizes over more than the reader takes in at once, with a large one in between.
    std::mt19937 random(6);
    Bytes crowd;
    while (crowd.size() < 300'000) {
        const Bytes chunk =
            Chunk("JUNK", Bytes(random() % 5000 == 0 ? 70'000 : random() % 4 * (random() % 4)));
        crowd.insert(crowd.end(), chunk.begin(), chunk.end());
    }
    const std::vector<Bytes> files = {Wave(crowd + pcmFormat + crowd + data), Wave(crowd),
        Wave(data + pcmFormat), Wave(pcmFormat + monoFormat + data), Wave(monoFormat + pcmFormat + data),
        Wave(pcmFormat + Chunk("fmt ", Bytes(14)) + data),
        Wave(pcmFormat + Chunk("fact", Little32(3)) + Chunk("fact", Little32(2)) + data),
        Wave(pcmFormat + Chunk("data", {}, 1000)), withJunk(0xFFFFFFFF),
        // With 32-bit offsets, its next chunk would be at the start of the walk again.
        withJunk(0xFFFFFFF8),
        // Each step leads on by a chunk's head at least.
        Wave(Bytes(80'000)), Wave(Chunk("fmt ", FormatBytes(1, 65535, 8000, 2, 65535)) + data)};
    for (const Bytes& file : files) {
        SCOPED_TRACE("file " + std::to_string(&file - files.data()));
        Check(file);
    }
    for (const Bytes& format : {PcmFormat(2, 8000, 16), AdpcmFormat(1, 8000, 15, usualPairs)}) {
        for (std::size_t size = 0; size < 60; ++size) {
            SCOPED_TRACE("format of " + std::to_string(size) + " bytes");
            Bytes cut = format;
            cut.resize(size);
            Check(Wave(Chunk("fmt ", cut) + data));
        }
    }
}

// A broken download or a full disk leaves any prefix of a good file. Each must be refused or played short;
// the address sanitizer watches the edges.
TEST_F(WaveParser, RefusesEveryTruncationOrPlaysItShort)
{
    for (const Bytes& sample : samples) {
        const Bytes whole = ReadAll(*OpenBytes(sample));
        Bytes kept;
        for (const unsigned char next : sample) {
            SCOPED_TRACE("sample " + std::to_string(&sample - samples) + ", kept " +
                std::to_string(kept.size()) + " bytes");
            Check(kept);
            if (const auto file = OpenBytes(kept)) {
                EXPECT_TRUE(IsFrontOf(ReadAll(*file), whole));
            }
            kept.push_back(next);
        }
    }
}

// Each byte by itself with the values that count, then several at once.
TEST_F(WaveParser, RefusesOrPlaysAfterAnyChange)
{
    constexpr unsigned char edgeValues[] = {0, 1, 2, 3, 7, 16, 0x7F, 0x80, 0xFE, 0xFF};
    for (const Bytes& sample : samples) {
        for (std::size_t offset = 0; offset < sample.size(); ++offset) {
            for (const unsigned char value : edgeValues) {
                SCOPED_TRACE("sample " + std::to_string(&sample - samples) + ", byte " +
                    std::to_string(offset) + " is " + std::to_string(value));
                Bytes bytes = sample;
                bytes[offset] = value;
                Check(bytes);
            }
        }
    }
    std::mt19937 random(20);
    for (int round = 0; round < 20000; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Bytes bytes = samples[round % 3];
        for (int change = 0; change < 4; ++change) {
            bytes[random() % bytes.size()] = round % 2 == 0 ? static_cast<unsigned char>(random())
                                                            : edgeValues[random() % sizeof edgeValues];
        }
        Check(bytes);
    }
}

} // namespace
