#include "tools/harmonet/convert/ChannelMixer.h"

#include <sndfile.h>

#include <algorithm>
#include <numeric>

namespace Tool
{

namespace
{

struct Sides
{
    float left;
    float right;
};

constexpr float shared = 0.70710678F; ///< Half the power.

Sides WeightOf(int place)
{
    switch (place) {
    case SF_CHANNEL_MAP_LEFT:
    case SF_CHANNEL_MAP_FRONT_LEFT:
        return {1.0F, 0.0F};
    case SF_CHANNEL_MAP_RIGHT:
    case SF_CHANNEL_MAP_FRONT_RIGHT:
        return {0.0F, 1.0F};
    case SF_CHANNEL_MAP_REAR_LEFT:
    case SF_CHANNEL_MAP_SIDE_LEFT:
        return {shared, 0.0F};
    case SF_CHANNEL_MAP_REAR_RIGHT:
    case SF_CHANNEL_MAP_SIDE_RIGHT:
        return {0.0F, shared};
    case SF_CHANNEL_MAP_CENTER:
    case SF_CHANNEL_MAP_FRONT_CENTER:
        return {shared, shared};
    case SF_CHANNEL_MAP_LFE:
        return {0.0F, 0.0F};
    default:
        return {0.5F, 0.5F};
    }
}

/// Returns the channel map for a file that does not contain one.
std::vector<int> DefaultChannelMap(int channels)
{
    std::vector<int> map = {SF_CHANNEL_MAP_LEFT, SF_CHANNEL_MAP_RIGHT, SF_CHANNEL_MAP_CENTER,
        SF_CHANNEL_MAP_LFE, SF_CHANNEL_MAP_REAR_LEFT, SF_CHANNEL_MAP_REAR_RIGHT};
    if (channels == 1) {
        map = {SF_CHANNEL_MAP_MONO};
    }
    if (channels == 4) {
        map = {
            SF_CHANNEL_MAP_LEFT, SF_CHANNEL_MAP_RIGHT, SF_CHANNEL_MAP_REAR_LEFT, SF_CHANNEL_MAP_REAR_RIGHT};
    }
    if (channels == 5) {
        map.erase(map.begin() + 3);
    }
    map.resize(static_cast<std::size_t>(channels), SF_CHANNEL_MAP_INVALID);
    return map;
}

/// Scales the weights of one output channel so that their sum is at most 1.
void Limit(float* weights, std::size_t count)
{
    const float sum = std::accumulate(weights, weights + count, 0.0F);
    if (sum > 1.0F) {
        std::transform(weights, weights + count, weights, [sum](float weight) { return weight / sum; });
    }
}

std::vector<float> MakeWeights(const std::vector<int>& map, int channels)
{
    const std::size_t sources = map.size();
    if (sources == 1) {
        return std::vector<float>(static_cast<std::size_t>(channels), 1.0F);
    }
    std::vector<float> weights(sources * 2);
    for (std::size_t i = 0; i < sources; ++i) {
        const Sides sides = WeightOf(map[i]);
        weights[i] = sides.left;
        weights[sources + i] = sides.right;
    }
    if (channels == 1) {
        for (std::size_t i = 0; i < sources; ++i) {
            weights[i] = weights[i] + weights[sources + i];
        }
        weights.resize(sources);
    }
    // The weights of both sides are symmetric, so they are scaled by the same factor and the centre stays
    // centred.
    for (int channel = 0; channel < channels; ++channel) {
        Limit(weights.data() + sources * static_cast<std::size_t>(channel), sources);
    }
    return weights;
}

} // namespace

ChannelMixer::ChannelMixer(SampleStage& newSource, const std::vector<int>& channelMap, int newChannels)
    : source(newSource)
    , channels(newChannels)
    , weights(MakeWeights(
          channelMap.empty() ? DefaultChannelMap(newSource.GetChannels()) : channelMap, newChannels))
    , buffer(MakeBuffer(newSource))
{
}

std::size_t ChannelMixer::Read(float* out, std::size_t frames)
{
    const auto sources = static_cast<std::size_t>(source.GetChannels());
    const std::size_t got = source.Read(buffer.data(), std::min(frames, stageFrames));
    for (std::size_t frame = 0; frame < got; ++frame) {
        const float* const in = buffer.data() + frame * sources;
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(channels); ++channel) {
            *out++ = std::inner_product(in, in + sources, weights.data() + channel * sources, 0.0F);
        }
    }
    return got;
}

} // namespace Tool
