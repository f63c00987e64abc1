// Sounds of every kind that come from the host's own object, and why a file does not play.

#include "harmonet/engine/OS.h"
#include "harmonet/files/SndNodeCache.h"
#include "tests/files/SoundFolder.h"
#include "tests/support/MemorySource.h"
#include "tests/support/MessageLog.h"

#include <string_view>

using namespace Quon;

namespace
{

Bytes FromText(std::string_view text)
{
    return {text.begin(), text.end()};
}

class FromSource : public SoundFolder
{
protected:
    FromSource() { File::AddRoot(sourceOwner, source); }
    ~FromSource() override { File::RemoveRoot(sourceOwner); }

    const PString sourceOwner{"sounds in memory"};
    const std::shared_ptr<MemorySource> source = std::make_shared<MemorySource>();
    OS os;
};

// A truncated file contains less than it states, and plays equally far from memory and from disk.
TEST_F(FromSource, HeldDataReadTheSameWithoutTheFile)
{
    const std::string streams = ADPCM_STREAMS;
    const Bytes whole[] = {PcmWave(2, 8000, 16, Counting(4000)), ReadBytes(streams + "/sox-stereo.wav"),
        ReadBytes(streams + "/../mpeg/streams/joint-22050.mp3"),
        ReadBytes(streams + "/../mpeg/streams/wrapped-44100.wav"),
        Wave(Chunk("fmt ", PcmFormat(1, 8000, 16)) + Chunk("data", {}))};
    source->mostPerRead = 100;
    SndNodeCache cache;
    for (const Bytes& bytes : whole) {
        for (const std::size_t cut : {std::size_t{0}, std::size_t{1}, bytes.size() / 3}) {
            SCOPED_TRACE(std::to_string(bytes.size()) + " bytes less " + std::to_string(cut));
            source->files["sound"] = {bytes.begin(), bytes.end() - static_cast<std::ptrdiff_t>(cut)};
            auto ofFolder = OpenBytes(source->files["sound"]);
            const Bytes expected = ofFolder ? ReadAll(*ofFolder) : Bytes();
            ofFolder.reset();
            const std::unique_ptr<SndFile> streamed(SndFile::OpenFile(sourceOwner, "sound"));
            SndNode* const node = cache.Hold(sourceOwner, "sound");
            ASSERT_EQ(node == nullptr, streamed == nullptr);
            if (node == nullptr) {
                continue;
            }
            EXPECT_EQ(ReadAll(*streamed), expected);
            EXPECT_EQ(openFiles.GetCount(), 1);
            source->files.clear();
            const std::unique_ptr<SndFile> held(cache.OpenHeld(sourceOwner, "sound"));
            const std::unique_ptr<SndFile> other(cache.OpenSound(sourceOwner, "sound", 3));
            EXPECT_EQ(held->GetSoundLength(), streamed->GetSoundLength());
            EXPECT_EQ(ReadAll(*held), expected);
            cache.Release(node);
            EXPECT_EQ(ReadAll(*other, 37), expected);
        }
    }
}

TEST_F(FromSource, ReportsWhyAFileDoesNotPlay)
{
    const Bytes pcm = PcmWave(1, 8000, 16, Counting(8));
    const std::pair<Bytes, const char*> rows[] = {
        {FromText("ID3\4") + Bytes(20), "has an ID3 tag in front of its MPEG frames"},
        {FromText("OggS and more of it"), "is an Ogg file"},
        {FromText("text, no sound"), "is neither a RIFF/WAVE file nor MPEG Layer III audio"},
        {FromText("RI"), "has only 2 bytes"},
        {{0xFF, 0xFD, 0x90, 0x00}, "is MPEG audio of a layer other than III"},
        {{0xFF, 0xE3, 0x90, 0x00}, "is MPEG-2.5 audio; only MPEG-1 and MPEG-2 are supported"},
        {Wave(Chunk("fmt ", FormatBytes(3, 2, 44100, 8, 32)) + Chunk("data", Counting(16))),
            "holds 32-bit float samples; only integer samples are supported"},
        {Wave(Chunk("fmt ", FormatBytes(6, 1, 8000, 1, 8)) + Chunk("data", Counting(16))),
            "has the format tag 6 (A-law); only PCM (1), Microsoft ADPCM (2) and MPEG Layer III (85) are "
            "supported"},
        {Wave(Chunk("fmt ", PcmFormat(0, 8000, 16)) + Chunk("data", Counting(16))), "states 0 channels"},
        {Wave(Chunk("fmt ", PcmFormat(1, 8000, 4)) + Chunk("data", Counting(16))),
            "has 4 bits per sample; the minimum is 8"},
        {Wave(Chunk("fmt ", PcmFormat(1, 8000, 16))), "has no data chunk"},
        {Wave(Chunk("data", Counting(16)) + Chunk("fmt ", PcmFormat(1, 8000, 16))),
            "has its data chunk before its format chunk"},
        {Wave({}), "is a RIFF/WAVE file without a format chunk"},
    };
    MessageLog log(os);
    for (const auto& [bytes, reason] : rows) {
        EXPECT_EQ(OpenBytes(bytes), nullptr);
        EXPECT_EQ(log.Take(), "E sound file 'sound' " + std::string(reason) + "\n");
    }
    EXPECT_NE(OpenBytes(pcm), nullptr);
    EXPECT_EQ(log.Take(), "");
    EXPECT_EQ(Open("missing.wav"), nullptr);
    EXPECT_EQ(log.Take(), "E sound file 'missing.wav' of owner 'sounds' does not exist\n");
    WaveFormatEx adpcm = {waveTagAdpcm, 1, 8000, 0, 256, 4, 32};
    EXPECT_EQ(SndFile::OpenFile(&adpcm, 4, &adpcm), nullptr);
    EXPECT_EQ(log.Take(),
        "E a block of memory has the format tag 2 (Microsoft ADPCM); only PCM (1) is supported in memory\n");
}

} // namespace
