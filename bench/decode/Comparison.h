#pragma once

#include "PcmDecoder.h"

#include <benchmark/benchmark.h>

namespace DecodeBench
{

/// Decoders of one sound, ours first. They have to agree before anything is timed.
struct Contest
{
    std::vector<PcmDecoderPointer> decoders;
    int channels = 0;
    /// By how many 16-bit steps a peer's PCM may differ from ours.
    int tolerance = 0;

    /// Null, a peer that is not there, is left out.
    void AddPeer(PcmDecoderPointer peer)
    {
        if (peer != nullptr) {
            decoders.push_back(std::move(peer));
        }
    }
};

/// Empty if every decoder gives the same PCM within the tolerance; otherwise what is wrong. A peer may begin
/// or end with up to 2304 sample frames more or less.
std::string FindDisagreement(Contest& contest);

/// In each round of an iteration every decoder decodes the whole sound once, in turns, so that whatever else
/// the machine does falls on all of them alike; what is measured is the processor time of the thread.
/// Counters, from the medians over the rounds: `ns_per_frame`
/// (nanoseconds per sample frame), `ns_best` (the least), `ns_<peer>` and `ratio_<peer>`: ours divided by the
/// peer's.
void RunContest(benchmark::State& state, Contest& contest);

} // namespace DecodeBench
