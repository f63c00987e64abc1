#include "tests/files/SoundFolder.h"

#include "harmonet/files/RiffWalk.h"
#include "harmonet/files/SndFileAdpcm.h"
#include "harmonet/files/SndFileHandle.h"
#include "harmonet/files/SndFileWav.h"
#include "harmonet/files/WaveProbe.h"

using namespace Quon;

namespace
{

struct WalkCase
{
    const char* what;
    Bytes bytes;
    int probe;
    bool opensAsPcm;
    bool opensAsAdpcm;
};

const Bytes pcmChunk = Chunk("fmt ", PcmFormat(2, 22050, 16));
const Bytes adpcmChunk = Chunk("fmt ", AdpcmFormat(1, 8000, 16, usualPairs));
const Bytes mpegChunk = Chunk("fmt ", FormatBytes(85, 2, 44100, 1, 0));
const Bytes dataChunk = Chunk("data", Counting(32));
const Bytes padding = Bytes(64, 0);

Bytes WithFormatBytes(std::size_t bytes)
{
    Bytes format = PcmFormat(2, 22050, 16);
    format.resize(bytes);
    return Wave(Chunk("fmt ", format) + dataChunk);
}

Bytes Replaced(Bytes bytes, std::size_t offset, char with)
{
    bytes[offset] = static_cast<unsigned char>(with);
    return bytes;
}

class WaveWalk : public SoundFolder
{
};

// How the probe and the two parsers take one and the same file. They differ on purpose: the probe looks at
// the first "fmt " chunk wherever it stands, the parsers at the last one in front of the data.
TEST_F(WaveWalk, ProbeAndParsersEachTakeAChunkInTheirOwnWay)
{
    const Bytes plain = Wave(pcmChunk + dataChunk);
    const std::vector<WalkCase> cases = {
        {"plain PCM", plain, 1, true, false},
        {"plain ADPCM", Wave(adpcmChunk + dataChunk), 2, false, true},
        {"MPEG in a wave", Wave(mpegChunk + dataChunk), 0, false, false},
        {"RIFF in small letters", Replaced(plain, 0, 'r'), 0, false, false},
        {"WAVE misspelt", Replaced(plain, 11, 'e'), 0, false, false},
        {"fmt in capitals", Replaced(plain, 12, 'F'), 0, false, false},
        {"no more than 11 bytes", Bytes(plain.begin(), plain.begin() + 11), 0, false, false},
        {"head alone", Bytes(plain.begin(), plain.begin() + 12), 0, false, false},
        {"fmt of 14 bytes", WithFormatBytes(14), 0, false, false},
        {"fmt of 16 bytes", WithFormatBytes(16), 1, true, false},
        {"fmt of 17 bytes, and so a pad byte", WithFormatBytes(17), 1, true, false},
        {"fmt of 18 bytes", WithFormatBytes(18), 1, true, false},
        {"fmt of 50 bytes", WithFormatBytes(50), 1, true, false},
        {"fmt of 51 bytes", WithFormatBytes(51), 0, false, false},
        {"format behind the data", Wave(dataChunk + pcmChunk), 1, false, false},
        {"format without data", Wave(pcmChunk + padding), 1, false, false},
        {"data without format", Wave(dataChunk), 0, false, false},
        {"PCM and then ADPCM", Wave(pcmChunk + adpcmChunk + dataChunk), 1, false, false},
        {"ADPCM and then PCM", Wave(adpcmChunk + pcmChunk + dataChunk), 2, false, false},
        {"PCM and then a bad size", Wave(pcmChunk + Chunk("fmt ", Bytes(14)) + dataChunk), 1, false, false},
        {"odd junk between", Wave(Chunk("JUNK", Bytes(7)) + pcmChunk + Chunk("LIST", Bytes(3)) + dataChunk),
            1, true, false},
        {"junk that claims 2^32 - 1 bytes", Wave(Chunk("JUNK", Bytes(4), 0xFFFFFFFF) + pcmChunk + dataChunk),
            0, false, false},
        {"junk that claims 2^32 - 2 bytes", Wave(Chunk("JUNK", Bytes(4), 0xFFFFFFFE) + pcmChunk + dataChunk),
            0, false, false},
        // Its next chunk would stand at the walk's start once more if offsets had 32 bits.
        {"junk that claims to wrap around", Wave(Chunk("JUNK", Bytes(4), 0xFFFFFFF8) + pcmChunk + dataChunk),
            0, false, false},
        {"data cut off behind its head", Wave(pcmChunk + Chunk("data", {}, 1000)), 1, true, false},
        {"data's head cut off", Wave(pcmChunk) + Bytes{'d', 'a', 't', 'a', 4, 0, 0}, 1, false, false},
    };
    for (const WalkCase& row : cases) {
        SCOPED_TRACE(row.what);
        folder.Write("sound", row.bytes);
        SndFileHandle* handle = openFiles.Acquire(owner, "sound");
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(ProbeWave(handle), row.probe);
        SndFileWav pcm;
        const bool opensAsPcm = pcm.OpenHandle(handle);
        EXPECT_EQ(opensAsPcm, row.opensAsPcm);
        EXPECT_EQ(pcm.FileType(), row.opensAsPcm ? SndFile::FileWav : SndFile::FileNone);
        SndFileAdpcm adpcm;
        const bool opensAsAdpcm = adpcm.OpenHandle(handle);
        EXPECT_EQ(opensAsAdpcm, row.opensAsAdpcm);
        if (!opensAsPcm && !opensAsAdpcm)
            openFiles.Release(handle);
        pcm.CloseFile(0, nullptr);
        adpcm.CloseFile(0, nullptr);
        EXPECT_EQ(openFiles.GetCount(), 0) << "somebody still holds the file";
    }
}

TEST_F(WaveWalk, ClassIsChosenByContentWhateverTheNameSays)
{
    folder.Write("music.mp3", Wave(pcmChunk + dataChunk));
    folder.Write("steps.wav", Bytes{'n', 'o', ' ', 's', 'o', 'u', 'n', 'd'});
    const auto file = Open("music.mp3");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->FileType(), SndFile::FileWav);
    EXPECT_EQ(file->GetFileName(), PString("music.mp3"));
    EXPECT_EQ(Open("steps.wav"), nullptr);
    EXPECT_EQ(openFiles.GetCount(), 1) << "the refused file is still open";
}

// Chunks of nothing, one behind the other: each step leads on by a chunk's head at least.
TEST_F(WaveWalk, EndsOnAFileOfEmptyChunks)
{
    EXPECT_EQ(OpenBytes(Wave(Bytes(80'000, 0))), nullptr);
}

// The length of a file is asked once. A file that has lost its end since then must not be walked to where it
// was.
TEST_F(WaveWalk, EndsWhereAFileHasShrunk)
{
    folder.Write("sound", Wave(Chunk("JUNK", Bytes(1000)) + pcmChunk + dataChunk));
    SndFileHandle* handle = openFiles.Acquire(owner, "sound");
    ASSERT_GT(handle->GetFile().Size(), 1000u);
    folder.Resize("sound", 1016);
    EXPECT_EQ(ProbeWave(handle), 0);
    openFiles.Release(handle);
}

} // namespace
