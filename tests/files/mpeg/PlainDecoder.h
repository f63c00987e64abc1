#pragma once

#include "PlainStages.h"

namespace PlainMpeg
{

/// A whole decoder of bare MPEG streams from the plain stages: the slow version that streams are compared
/// with. It needs a stream without junk, and reservoirs that are there.
class Decoder
{
public:
    /// Interleaved 16-bit values of all frames, each in its own number of channels.
    std::vector<int> Decode(const std::vector<unsigned char>& stream);

private:
    struct Header
    {
        bool isMpeg1;
        int rateIndex;
        int channels;
        bool msStereo;
        bool intensityStereo;
        int bytes;
        int sideInfoStart;
    };

    static Header ParseHeader(const std::vector<unsigned char>& stream, std::size_t at);
    Quon::GranuleInfo ParseGranule(Bits& bits) const;
    void DecodeFrame(const std::vector<unsigned char>& frame);
    void ReadScaleFactors(Bits& bits, int granule, std::size_t channel, Quon::GranuleInfo& info);
    void ReadLsfScaleFactors(
        Bits& bits, bool intensityChannel, Quon::GranuleInfo& info, Quon::ScaleFactors& to);
    void DecodeGranule(int granule);

    Header header = {};
    Quon::BandTable bands = {};
    std::vector<unsigned char> mainData; ///< Of this frame and of all before it.
    int position = 0; ///< In bits.
    std::array<std::array<int, 4>, 2> scfsi = {};
    std::array<std::array<Quon::GranuleInfo, 2>, 2> granules = {}; ///< By granule and channel.
    std::array<Quon::ScaleFactors, 2> scaleFactors = {};
    std::array<Subbands, 2> overlap = {};
    std::array<Polyphase, 2> polyphase;
    std::vector<int> pcm;
};

} // namespace PlainMpeg
