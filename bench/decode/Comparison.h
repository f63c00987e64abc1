#pragma once

#include "PcmDecoder.h"

#include <benchmark/benchmark.h>

namespace DecodeBench
{

/// Decoders of one sound, Harmonet's first. Their output must agree before anything is timed.
struct Contest
{
    std::vector<PcmDecoderPointer> decoders;
    int channels = 0;
    /// The maximum difference, in 16-bit steps, between a peer's PCM and Harmonet's.
    int tolerance = 0;

    /// Ignores null, a peer that is not available.
    void AddPeer(PcmDecoderPointer peer)
    {
        if (peer != nullptr) {
            decoders.push_back(std::move(peer));
        }
    }
};

/// Returns an empty string if all decoders produce the same PCM within the tolerance, otherwise the error. A
/// peer may add or omit up to 2304 sample frames at the beginning or the end.
std::string FindDisagreement(Contest& contest);

/// Runs the decoders. Each iteration consists of rounds in which every decoder decodes the whole sound once,
/// so that other load on the machine affects all of them equally. Measures the processor time of the thread.
/// Counters, from the medians over the rounds: `ns_per_frame` (nanoseconds per sample frame), `ns_best` (the
/// minimum), `ns_<peer>`, and `ratio_<peer>`, Harmonet's time divided by the peer's.
void RunContest(benchmark::State& state, Contest& contest);

} // namespace DecodeBench
