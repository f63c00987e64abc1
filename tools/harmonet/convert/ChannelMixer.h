#pragma once

#include "tools/harmonet/convert/SampleStage.h"

namespace Tool
{

/// Mixes any number of channels to one or two.
///
/// The weights are those of ITU-R BS.775: the centre and the surround channels go to a side with a factor of
/// 0.7071, the channel for low frequencies is left out. They are scaled so that full signals in all channels
/// stay full. One channel goes to both sides as it is.
class ChannelMixer final : public SampleStage
{
public:
    /// `channelMap` has libsndfile's SF_CHANNEL_MAP numbers; if it is empty, the usual order of wave files
    /// counts. `source` must live as long as this.
    ChannelMixer(SampleStage& newSource, const std::vector<int>& channelMap, int newChannels);

    int GetChannels() const override { return channels; }
    int GetRateHz() const override { return source.GetRateHz(); }
    std::size_t Read(float* out, std::size_t frames) override;

private:
    SampleStage& source;
    int channels;
    std::vector<float> weights; ///< For each output channel one for each input channel.
    std::vector<float> buffer;
};

} // namespace Tool
