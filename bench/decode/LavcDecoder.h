#pragma once

#include "PcmDecoder.h"

namespace DecodeBench
{

/// The stream parameters that libavcodec needs before the packets.
struct LavcStream
{
    std::string codec; ///< The decoder's name in libavcodec.
    int channels = 0;
    int sampleFrequency = 0;
    int blockAlign = 0;
    Bytes extraData;
    std::vector<std::span<const unsigned char>> packets; ///< In memory that outlives the decoder.
};

/// Returns libavcodec's decoder with its float output converted to 16 bits. Null if libavcodec has no such
/// decoder or the benchmark is built without it.
PcmDecoderPointer MakeLavcDecoder(LavcStream stream);

} // namespace DecodeBench
