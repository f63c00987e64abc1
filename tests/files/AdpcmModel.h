#pragma once

#include "tests/files/WaveBuilder.h"

/// A plain decoder of Microsoft ADPCM: all blocks from the first to the last, in wide integers, with
/// divisions in the place of shifts. It holds no state and knows no positions.

struct AdpcmLayout
{
    int channels;
    int blockAlign;
    std::vector<std::pair<int, int>> pairs;
};

/// All PCM, 16 bits, little-endian, interleaved, up to the first block that cannot be decoded.
Bytes DecodeAdpcm(const AdpcmLayout& layout, const Bytes& data);
