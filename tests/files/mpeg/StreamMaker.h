#pragma once

#include "tests/files/WaveBuilder.h"

#include <random>

/// Makes MPEG frames for the tests, bit by bit.

/// What a frame's header says: if nothing else is asked for MPEG-1, 128 kbit/s, 44.1 kHz, mono, which is 417
/// bytes.
struct FrameForm
{
    bool isMpeg1 = true;
    int bitrateIndex = 9;
    int rateIndex = 0;
    int mode = 3; ///< 0 stereo, 1 joint stereo, 3 mono.
    bool hasCrc = false;
    bool padding = false;

    std::size_t GetFrameBytes() const;
};

/// A frame with empty side information, which decodes to silence. Its main data begin so many bytes ahead of
/// it.
Bytes MakeSilentFrame(const FrameForm& form, int mainDataBegin = 0);

/// Frames whose side information and main data are random, but for sizes that fit and gains that keep the
/// sound at about full scale: every kind of block, table, scale factor and stereo mode turns up.
Bytes MakeRandomStream(std::mt19937& random, const FrameForm& form, int frameCount);
