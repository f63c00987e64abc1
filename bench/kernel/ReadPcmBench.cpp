#include "bench/kernel/BenchHost.h"

#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndFileService.h"

#include <array>
#include <benchmark/benchmark.h>
#include <cstring>
#include <memory>
#include <vector>

// ReadPcm/...: a driver reads PCM in blocks of 1024 sample frames, from memory and from an open file,
// compared with memcpy of the same number of bytes.

namespace
{

using namespace Quon;

constexpr int pieceFrames = 1024;
constexpr int memoryFrames = 64 * pieceFrames;

using Piece = std::array<std::int16_t, pieceFrames>;

void CountFrames(benchmark::State& state, std::int64_t frames)
{
    state.SetItemsProcessed(frames);
    state.counters["ns_per_frame"] = benchmark::Counter(
        static_cast<double>(frames) * 1e-9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// Reads the data repeatedly. The last block must match the file.
void ReadRound(benchmark::State& state, SndFile& data, const std::int16_t* expected)
{
    Piece piece{};
    auto* const bytes = reinterpret_cast<unsigned char*>(piece.data());
    std::int64_t frames = 0;
    int from = 0;
    int given = 0;
    for (auto _ : state) {
        if (data.GetSoundSamples() - data.GetCurrentSample() < pieceFrames) {
            data.Rewind();
        }
        from = data.GetCurrentSample();
        given = data.ReadSamples(bytes, pieceFrames);
        frames += given;
        benchmark::DoNotOptimize(piece);
    }
    CountFrames(state, frames);
    if (given != pieceFrames || std::memcmp(piece.data(), expected + from, sizeof piece) != 0) {
        state.SkipWithError("the PCM that was read is wrong");
    }
}

std::vector<std::int16_t> MakePcm(int sampleFrames, int period)
{
    std::vector<std::int16_t> pcm(static_cast<std::size_t>(sampleFrames));
    for (int i = 0; i < sampleFrames; ++i) {
        pcm[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(i % period);
    }
    return pcm;
}

void ReadPcmMemory(benchmark::State& state)
{
    std::vector<std::int16_t> pcm = MakePcm(memoryFrames, Bench::WaveFolder::period);
    WaveFormatEx format{waveTagPcm, 1, 22050, 44100, 2, 16, 0};
    const std::unique_ptr<SndFile> data(
        SndFile::OpenFile(pcm.data(), static_cast<unsigned long>(pcm.size() * sizeof pcm[0]), &format));
    ReadRound(state, *data, pcm.data());
}

void ReadPcmFile(benchmark::State& state)
{
    const Bench::WaveFolder files(1);
    const SndFileService service;
    const std::unique_ptr<SndFile> data(SndFile::OpenFile(PString(), files.GetName(0)));
    const std::vector<std::int16_t> pcm = MakePcm(data->GetSoundSamples(), Bench::WaveFolder::period);
    ReadRound(state, *data, pcm.data());
}

void CopyPcm(benchmark::State& state)
{
    const std::vector<std::int16_t> pcm = MakePcm(memoryFrames, Bench::WaveFolder::period);
    Piece piece{};
    std::size_t from = 0;
    std::int64_t frames = 0;
    for (auto _ : state) {
        from = from + pieceFrames < pcm.size() ? from + pieceFrames : 0;
        std::memcpy(piece.data(), pcm.data() + from, sizeof piece);
        frames += pieceFrames;
        benchmark::DoNotOptimize(piece);
    }
    CountFrames(state, frames);
}

BENCHMARK(ReadPcmMemory)->Name("ReadPcm/memory");
BENCHMARK(ReadPcmFile)->Name("ReadPcm/file");
BENCHMARK(CopyPcm)->Name("ReadPcm/memcpy");

} // namespace
