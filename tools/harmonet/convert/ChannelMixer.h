#pragma once

#include "tools/harmonet/convert/SampleStage.h"

namespace Tool
{

/// Mixes any number of channels to one or two.
///
/// The weights are those of ITU-R BS.775: the centre and surround channels have a factor of 0.7071 on each
/// side, and the low-frequency channel is left out. They are scaled so that full scale in all channels does
/// not clip. A mono channel is copied to both sides unchanged.
class ChannelMixer final : public SampleStage
{
public:
    /// `channelMap` has libsndfile's SF_CHANNEL_MAP numbers; if it is empty, the usual order of wave files is
    /// assumed. `newSource` must outlive this object.
    ChannelMixer(SampleStage& newSource, const std::vector<int>& channelMap, int newChannels);

    int GetChannels() const override { return channels; }
    int GetRateHz() const override { return source.GetRateHz(); }
    std::size_t Read(float* out, std::size_t frames) override;

private:
    SampleStage& source;
    int channels;
    std::vector<float> weights; ///< One for each input channel, for each output channel in turn.
    std::vector<float> buffer;
};

} // namespace Tool
