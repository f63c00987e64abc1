// Which reader takes a wave file and how many sample frames it counts, and what becomes of damaged files.

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

constexpr int refused = -1;

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

    /// Plays the file if it opens.
    void Check(const Bytes& bytes)
    {
        if (const auto file = OpenBytes(bytes)) {
            PlayThrough(*file);
        }
        ASSERT_EQ(openFiles.GetCount(), 0) << "the file stayed open";
    }

    /// The sample frames that a reader counts in a file.
    template<class Reader>
    int Count(const Bytes& bytes)
    {
        source->files["sound"] = bytes;
        SndFileHandle* const handle = openFiles.Acquire(owner, "sound");
        Reader reader;
        const bool opens = reader.OpenHandle(handle);
        const int count = opens ? reader.GetSoundSamples() : refused;
        EXPECT_EQ(reader.FileType() != SndFile::FileNone, opens);
        EXPECT_EQ(handle->GetUseCount(), 1) << "a reader that refuses a file does not keep it";
        if (!opens) {
            openFiles.Release(handle);
        }
        reader.CloseFile(0, nullptr);
        return count;
    }

    int Probe(const Bytes& bytes)
    {
        source->files["sound"] = bytes;
        SndFileHandle* const handle = openFiles.Acquire(owner, "sound");
        const int type = ProbeWave(handle);
        openFiles.Release(handle);
        return type;
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

// A block of ADPCM has a head of 7 bytes for each channel, in which are its first two sample frames, and half
// a byte for each further sample; the last one can be shorter.
TEST_F(WaveParser, CountsTheSampleFramesOfValidFilesAndRefusesOthers)
{
    constexpr int none = SndFile::FileNone;
    constexpr int pcm = SndFile::FileWav;
    constexpr int adpcm = SndFile::FileAdpcm;
    const Bytes data = Chunk("data", blocks);
    const auto format = [](const Bytes& bytes) { return Chunk("fmt ", bytes); };
    const auto fact = [](std::uint32_t count) { return Chunk("fact", Little32(count)); };
    const auto block = [&](int channels, int bytes) {
        return format(AdpcmFormat(channels, 8000, bytes, usualPairs));
    };
    // Chunks of all small sizes over more than the reader takes in at once, with a large one in between.
    std::mt19937 random(6);
    Bytes crowd;
    while (crowd.size() < 300'000) {
        const Bytes chunk =
            Chunk("JUNK", Bytes(random() % 5000 == 0 ? 70'000 : random() % 4 * (random() % 4)));
        crowd.insert(crowd.end(), chunk.begin(), chunk.end());
    }
    const struct
    {
        const char* what;
        Bytes file;
        int type;
        int frames;
    } rows[] = {
        {"PCM", Wave(pcmFormat + data), pcm, 10},
        {"12 bits in a byte", Wave(format(PcmFormat(1, 8000, 12)) + data), pcm, 41},
        {"ADPCM", Wave(monoFormat + data), adpcm, 18 + 18 + 10},
        {"ADPCM, only a head", Wave(monoFormat + Chunk("data", Counting(37))), adpcm, 18 + 18},
        {"stereo ADPCM", Wave(stereoFormat + Chunk("data", stereoBlocks)), adpcm, 12 + 12 + 8},
        {"stereo ADPCM, only a head", Wave(stereoFormat + Chunk("data", Counting(38))), adpcm, 12},
        {"blocks of a head", Wave(block(1, 7) + data), adpcm, 5 * 2},
        {"blocks of less than a head", Wave(block(1, 6) + data), adpcm, refused},
        {"stereo blocks of one frame", Wave(block(2, 13) + data), adpcm, 3},
        {"stereo blocks of none", Wave(block(2, 12) + data), adpcm, refused},
        {"three channels", Wave(block(3, 32) + data), adpcm, refused},
        {"no ADPCM channels", Wave(format(FormatBytes(2, 0, 8000, 15, 4) + Bytes(6)) + data), adpcm, refused},
        {"no channels", Wave(format(PcmFormat(0, 8000, 16)) + data), pcm, refused},
        {"the largest frame", Wave(format(FormatBytes(1, 65535, 8000, 2, 65535)) + data), pcm, 0},
        {"7 bits", Wave(format(PcmFormat(1, 8000, 7)) + data), pcm, refused},
        {"no rate", Wave(format(PcmFormat(2, 0, 16)) + data), pcm, refused},
        {"the highest rate", Wave(format(PcmFormat(2, 0x7FFFFFFF, 16)) + data), pcm, 10},
        {"a negative rate", Wave(format(PcmFormat(2, 0x80000000, 16)) + data), pcm, refused},
        {"ADPCM, no rate", Wave(format(AdpcmFormat(1, 0, 15, usualPairs)) + data), adpcm, refused},
        {"ADPCM, a negative rate", Wave(format(AdpcmFormat(1, 0x80000000, 15, usualPairs)) + data), adpcm,
            refused},
        {"another tag", Wave(format(FormatBytes(3, 2, 8000, 4, 16)) + data), none, refused},
        {"no wave", Bytes{'W'} + Wave(pcmFormat + data), none, refused},
        {"odd chunks", Wave(Chunk("LIST", Bytes(3)) + pcmFormat + Chunk("JUNK", Bytes(5)) + data), pcm, 10},
        {"many chunks", Wave(crowd + pcmFormat + crowd + data), pcm, 10},
        {"only such", Wave(crowd), none, refused},
        {"zeros", Wave(Bytes(80'000)), none, refused},
        {"no format", Wave(data), none, refused},
        {"no data", Wave(pcmFormat), pcm, refused},
        {"data first", Wave(data + pcmFormat), pcm, refused},
        {"the second format is ADPCM", Wave(pcmFormat + monoFormat + data), pcm, refused},
        {"the second format is PCM", Wave(monoFormat + pcmFormat + data), adpcm, refused},
        {"the last format counts", Wave(pcmFormat + format(PcmFormat(1, 8000, 8)) + data), pcm, 41},
        {"a short format", Wave(pcmFormat + format(Bytes(14)) + data), pcm, refused},
        {"a stated size beyond the end", Wave(pcmFormat + Chunk("data", {}, 1000)), pcm, 250},
        {"the last count counts", Wave(pcmFormat + fact(3) + fact(2) + data), pcm, 2},
        {"a count of none", Wave(pcmFormat + fact(0) + data), pcm, 10},
        {"a count beyond the data", Wave(monoFormat + fact(47) + data), adpcm, 46},
        {"a count after the data", Wave(pcmFormat + data + fact(2)), pcm, 10},
        {"a chunk to the end", Wave(Chunk("JUNK", Bytes(4), 0xFFFFFFFF) + pcmFormat + data), none, refused},
        // With 32-bit offsets, its next chunk would be at the start of the walk again.
        {"a chunk around", Wave(Chunk("JUNK", Bytes(4), 0xFFFFFFF8) + pcmFormat + data), none, refused},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(Probe(row.file), row.type);
        EXPECT_EQ(Count<SndFileWav>(row.file), row.type == pcm ? row.frames : refused);
        EXPECT_EQ(Count<SndFileAdpcm>(row.file), row.type == adpcm ? row.frames : refused);
    }
    // A format has 16 to 50 bytes, and at least as many as its one pair of coefficients needs.
    for (std::size_t size = 0; size < 60; ++size) {
        SCOPED_TRACE("format of " + std::to_string(size) + " bytes");
        const auto cut = [&](Bytes bytes) {
            bytes.resize(size);
            return Wave(format(bytes) + data);
        };
        const Bytes plain = cut(PcmFormat(2, 8000, 16));
        EXPECT_EQ(Probe(plain), size >= 16 && size <= 50 ? pcm : none);
        EXPECT_EQ(Count<SndFileWav>(plain), size >= 16 && size <= 50 ? 10 : refused);
        EXPECT_EQ(Count<SndFileAdpcm>(cut(AdpcmFormat(1, 8000, 15, {{256, 0}}))),
            size >= 26 && size <= 50 ? 46 : refused);
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
