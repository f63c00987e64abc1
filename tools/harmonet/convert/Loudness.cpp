#include "tools/harmonet/convert/Loudness.h"

#include "tools/harmonet/ToolError.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace Tool
{

namespace
{

struct Destroy
{
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
};

using State = std::unique_ptr<ebur128_state, Destroy>;

void Check(int error)
{
    if (error != EBUR128_SUCCESS) {
        throw ToolError("cannot measure the loudness of a sound with this rate or number of channels");
    }
}

double TruePeakDecibels(ebur128_state& state)
{
    double highest = 0.0;
    for (unsigned int channel = 0; channel < state.channels; ++channel) {
        double peak = 0.0;
        Check(ebur128_true_peak(&state, channel, &peak));
        highest = std::max(highest, peak);
    }
    return 20.0 * std::log10(highest);
}

/// Repeats the sound until there are 400 ms of it.
void Repeat(ebur128_state& state, const std::vector<float>& sound)
{
    const std::size_t frames = sound.size() / state.channels;
    const std::size_t needed = state.samplerate * 2 / 5 + 1;
    for (std::size_t added = frames; frames > 0 && added < needed; added += frames) {
        Check(ebur128_add_frames_float(&state, sound.data(), frames));
    }
}

} // namespace

Loudness MeasureLoudness(SampleStage& sound)
{
    const auto channels = static_cast<std::size_t>(sound.GetChannels());
    const State state(ebur128_init(static_cast<unsigned>(channels),
        static_cast<unsigned long>(sound.GetRateHz()), EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK));
    if (!state) {
        Check(EBUR128_ERROR_NOMEM);
    }
    const std::size_t repeatable = state->samplerate * 2 / 5 * channels;
    std::vector<float> start;
    std::vector<float> buffer = MakeBuffer(sound);
    while (const std::size_t got = sound.Read(buffer.data(), stageFrames)) {
        Check(ebur128_add_frames_float(state.get(), buffer.data(), got));
        if (start.size() <= repeatable) {
            start.insert(
                start.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(got * channels));
        }
    }
    const Loudness peak = {0.0, TruePeakDecibels(*state)};
    Repeat(*state, start);
    Loudness loudness = peak;
    Check(ebur128_loudness_global(state.get(), &loudness.lufs));
    return loudness;
}

} // namespace Tool
