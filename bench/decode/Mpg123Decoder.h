#pragma once

#include "PcmDecoder.h"

namespace DecodeBench
{

/// libmpg123 with its fastest decoder and 16-bit output, on a stream in memory that outlives it. Null where
/// the benchmark is built without it.
PcmDecoderPointer MakeMpg123Decoder(std::span<const unsigned char> stream);

} // namespace DecodeBench
