#include "Comparison.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>

namespace DecodeBench
{

namespace
{

constexpr std::size_t blockValues = 1 << 14;
constexpr int maxOffset = 2304;
constexpr int rounds = 31;

std::vector<short> DecodeAll(PcmDecoder& decoder, int channels)
{
    std::vector<short> pcm;
    std::vector<short> block(blockValues);
    decoder.Restart();
    while (const int count = decoder.Decode(block)) {
        pcm.insert(pcm.end(), block.begin(), block.begin() + count * channels);
    }
    return pcm;
}

/// Returns the largest difference if `theirs` begins `offset` values late. Stops once it exceeds the limit.
int LargestDifference(const std::vector<short>& ours, const std::vector<short>& theirs, int offset, int limit,
    std::size_t values)
{
    int largest = 0;
    for (std::size_t i = 0; i < values && largest <= limit; ++i) {
        largest = std::max(largest, std::abs(ours[i + static_cast<std::size_t>(offset)] - theirs[i]));
    }
    return largest;
}

bool Agree(const std::vector<short>& ours, const std::vector<short>& theirs, int channels, int tolerance)
{
    const std::size_t slack = static_cast<std::size_t>(maxOffset) * static_cast<std::size_t>(channels);
    if (ours.size() < 10 * slack || theirs.size() + slack < ours.size() ||
        ours.size() + slack < theirs.size()) {
        return false;
    }
    const std::size_t values = std::min(ours.size(), theirs.size()) - slack;
    for (int offset = 0; offset <= maxOffset * channels; offset += channels) {
        if (LargestDifference(ours, theirs, offset, tolerance, values) <= tolerance ||
            LargestDifference(theirs, ours, offset, tolerance, values) <= tolerance) {
            return true;
        }
    }
    return false;
}

/// Returns the processor time of this thread, which excludes other load on the machine.
double ThreadNanoseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

double TimePerFrame(PcmDecoder& decoder, std::vector<short>& block)
{
    decoder.Restart();
    long sampleFrames = 0;
    const double start = ThreadNanoseconds();
    while (const int count = decoder.Decode(block)) {
        sampleFrames += count;
    }
    return (ThreadNanoseconds() - start) / static_cast<double>(sampleFrames);
}

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Returns the name for counters: "lavc" for "libavcodec mp3float", "mpg123" for "libmpg123".
std::string ShortName(const std::string& name)
{
    if (name.starts_with("libavcodec")) {
        return "lavc";
    }
    return name.starts_with("lib") ? name.substr(3) : name;
}

} // namespace

std::string FindDisagreement(Contest& contest)
{
    const std::vector<short> ours = DecodeAll(*contest.decoders.front(), contest.channels);
    for (std::size_t i = 1; i < contest.decoders.size(); ++i) {
        const std::vector<short> theirs = DecodeAll(*contest.decoders[i], contest.channels);
        if (!Agree(ours, theirs, contest.channels, contest.tolerance)) {
            return contest.decoders[i]->GetName() + " decodes different PCM";
        }
    }
    return {};
}

void RunContest(benchmark::State& state, Contest& contest)
{
    const std::string disagreement = FindDisagreement(contest);
    if (!disagreement.empty()) {
        state.SkipWithError(disagreement.c_str());
        return;
    }
    std::vector<short> block(blockValues);
    std::vector<std::vector<double>> nsPerFrame(contest.decoders.size());
    for ([[maybe_unused]] auto iteration : state) {
        for (int round = 0; round < rounds; ++round) {
            for (std::size_t i = 0; i < contest.decoders.size(); ++i) {
                nsPerFrame[i].push_back(TimePerFrame(*contest.decoders[i], block));
            }
        }
    }
    const double ours = Median(nsPerFrame[0]);
    state.counters["ns_per_frame"] = ours;
    state.counters["ns_best"] = *std::min_element(nsPerFrame[0].begin(), nsPerFrame[0].end());
    for (std::size_t i = 1; i < contest.decoders.size(); ++i) {
        const std::string peer = ShortName(contest.decoders[i]->GetName());
        state.counters["ns_" + peer] = Median(nsPerFrame[i]);
        state.counters["ratio_" + peer] = ours / Median(nsPerFrame[i]);
    }
}

} // namespace DecodeBench
