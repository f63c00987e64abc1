#pragma once

#include "PcmDecoder.h"

namespace DecodeBench
{

/// Returns libmpg123 with its fastest decoder and 16-bit output. `stream` must outlive it. Null if the
/// benchmark is built without libmpg123.
PcmDecoderPointer MakeMpg123Decoder(std::span<const unsigned char> stream);

} // namespace DecodeBench
