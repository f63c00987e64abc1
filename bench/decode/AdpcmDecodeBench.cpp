// Decode/adpcm-*: one minute of sound as Microsoft ADPCM, encoded by sox, compared with libavcodec's decoder.

#include "Comparison.h"
#include "LavcDecoder.h"
#include "OurDecoder.h"

#include "harmonet/engine/File.h"
#include "harmonet/files/SndFileAdpcm.h"
#include "harmonet/files/SndFileCache.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace DecodeBench
{

namespace
{

/// libavcodec rounds its prediction toward zero; sox and Harmonet round down. The difference accumulates
/// within a block, here to about 1100 steps. Harmonet's output is bit-identical to that of sox.
constexpr int roundingTolerance = 2048;

/// The bytes of a file and what its reader has determined about them.
struct AdpcmSound
{
    Bytes data;
    Quon::SoundFormat format;
    Quon::AdpcmNodeInfo* info = nullptr; ///< A cache node takes ownership.
};

AdpcmSound LoadSound(const std::string& name)
{
    const Quon::PString folder("music");
    Quon::SndFileCache openFiles;
    Quon::File::AddRoot(folder, HARMONET_BENCH_MUSIC);
    Quon::SndFile::SetSndFileCache(&openFiles);
    AdpcmSound sound;
    {
        const std::unique_ptr<Quon::SndFile> file(
            Quon::SndFile::OpenFile(folder, Quon::PString((name + ".wav").c_str())));
        if (file != nullptr && file->FileType() == Quon::SndFile::FileAdpcm && file->Load() != nullptr) {
            sound.data.assign(file->Load(), file->Load() + file->Size());
            sound.format = *file;
            sound.info = static_cast<Quon::AdpcmNodeInfo*>(file->CreateNodeInfo());
        }
    }
    Quon::SndFile::SetSndFileCache(nullptr);
    return sound;
}

std::vector<std::span<const unsigned char>> SplitBlocks(const AdpcmSound& sound)
{
    const std::span<const unsigned char> all(sound.data);
    const std::size_t blockBytes = sound.info->blockAlign;
    std::vector<std::span<const unsigned char>> blocks;
    for (std::size_t position = 0; position + blockBytes <= all.size(); position += blockBytes) {
        blocks.push_back(all.subspan(position, blockBytes));
    }
    return blocks;
}

bool GivesPcmOfSox(PcmDecoder& decoder, const std::string& name, int channels)
{
    std::ifstream file(std::string(HARMONET_BENCH_MUSIC) + "/" + name + ".pcm", std::ios::binary);
    const Bytes expected{std::istreambuf_iterator<char>(file), {}};
    std::vector<short> block(4096);
    std::size_t position = 0;
    decoder.Restart();
    while (const int count = decoder.Decode(block)) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(block.data());
        const std::size_t byteCount = static_cast<std::size_t>(count * channels) * sizeof(short);
        if (position + byteCount > expected.size() ||
            !std::equal(bytes, bytes + byteCount, expected.begin() + static_cast<std::ptrdiff_t>(position))) {
            return false;
        }
        position += byteCount;
    }
    return position == expected.size() && position > 0;
}

void DecodeAdpcm(benchmark::State& state, const std::string& name)
{
    AdpcmSound sound = LoadSound(name);
    if (sound.info == nullptr) {
        state.SkipWithError("the music is missing; the build creates it with sox");
        return;
    }
    Contest contest;
    contest.channels = sound.format.GetChannels();
    contest.tolerance = roundingTolerance;
    LavcStream lavc{"adpcm_ms", contest.channels, sound.format.GetSampleFrequency(),
        static_cast<int>(sound.info->blockAlign), {}, SplitBlocks(sound)};
    contest.decoders.push_back(
        MakeOurDecoder(sound.data, Quon::SndFile::FileAdpcm, sound.format, sound.info));
    if (contest.decoders.front() == nullptr) {
        state.SkipWithError("the stream does not open");
        return;
    }
    if (!GivesPcmOfSox(*contest.decoders.front(), name, contest.channels)) {
        state.SkipWithError("the PCM differs from that of sox");
        return;
    }
    contest.AddPeer(MakeLavcDecoder(std::move(lavc)));
    RunContest(state, contest);
}

const bool registered = [] {
    for (const std::string name : {"adpcm-stereo", "adpcm-mono"}) {
        const auto run = [name](benchmark::State& state) { DecodeAdpcm(state, name); };
        benchmark::RegisterBenchmark(("Decode/" + name).c_str(), run)->Unit(benchmark::kMillisecond);
    }
    return true;
}();

} // namespace

} // namespace DecodeBench
