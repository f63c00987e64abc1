// Decode/mp3-*: one minute of music-like sound, encoded by lame with five settings, compared with
// libavcodec's float decoder plus conversion to 16 bits and with libmpg123.

#include "Comparison.h"
#include "LavcDecoder.h"
#include "Mpg123Decoder.h"
#include "OurDecoder.h"

#include "harmonet/files/mpeg/FrameParser.h"

#include <fstream>
#include <iterator>

namespace DecodeBench
{

namespace
{

/// Peers round; Harmonet truncates.
constexpr int stepTolerance = 2;

Bytes ReadFile(const std::string& name)
{
    std::ifstream file(std::string(HARMONET_BENCH_MUSIC) + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Splits a stream that contains only MPEG frames.
std::vector<std::span<const unsigned char>> SplitFrames(const Bytes& stream)
{
    std::vector<std::span<const unsigned char>> frames;
    std::size_t position = 0;
    while (position + Quon::frameHeaderBytes <= stream.size()) {
        const auto header = Quon::SplitFrameHeader(Quon::LoadFrameHeader(stream.data() + position));
        if (!Quon::IsPlayable(header)) {
            break;
        }
        const std::size_t bytes = static_cast<std::size_t>(Quon::FrameBytes(header)) + Quon::frameHeaderBytes;
        if (position + bytes > stream.size()) {
            break;
        }
        frames.emplace_back(stream.data() + position, bytes);
        position += bytes;
    }
    return frames;
}

void DecodeMpeg(benchmark::State& state, const std::string& name, int channels, int sampleFrequency)
{
    Bytes stream = ReadFile(name + ".mp3");
    if (stream.empty()) {
        state.SkipWithError("the music is missing; the build creates it with sox and lame");
        return;
    }
    Contest contest;
    contest.channels = channels;
    contest.tolerance = stepTolerance;
    Quon::SoundFormat format;
    format.SetFormat(2, sampleFrequency, 0, channels);
    contest.decoders.push_back(MakeOurDecoder(stream, Quon::SndFile::FileMP3, format, nullptr));
    if (contest.decoders.front() == nullptr) {
        state.SkipWithError("the stream does not open");
        return;
    }
    LavcStream lavc{"mp3float", channels, sampleFrequency, 0, {}, SplitFrames(stream)};
    contest.AddPeer(MakeLavcDecoder(std::move(lavc)));
    contest.AddPeer(MakeMpg123Decoder(stream));
    RunContest(state, contest);
}

void Register(const std::string& name, int channels, int sampleFrequency)
{
    const auto run = [=](benchmark::State& state) { DecodeMpeg(state, name, channels, sampleFrequency); };
    benchmark::RegisterBenchmark(("Decode/" + name).c_str(), run)->Unit(benchmark::kMillisecond);
}

const bool registered = [] {
    Register("mp3-128k", 2, 44100);
    Register("mp3-320k", 2, 44100);
    Register("mp3-v2", 2, 44100);
    Register("mp3-mono", 1, 44100);
    Register("mp3-mpeg2", 2, 22050);
    return true;
}();

} // namespace

} // namespace DecodeBench

BENCHMARK_MAIN();
