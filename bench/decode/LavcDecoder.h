#pragma once

#include "PcmDecoder.h"

namespace DecodeBench
{

/// What libavcodec has to be told of a stream ahead of its packets.
struct LavcStream
{
    std::string codec; ///< The decoder's name in libavcodec.
    int channels = 0;
    int sampleFrequency = 0;
    int blockAlign = 0;
    Bytes extraData;
    std::vector<std::span<const unsigned char>> packets; ///< In memory that outlives the decoder.
};

/// libavcodec's decoder, with its float output converted to 16 bits. Null if it has no such decoder, and
/// where the benchmark is built without it.
PcmDecoderPointer MakeLavcDecoder(LavcStream stream);

} // namespace DecodeBench
