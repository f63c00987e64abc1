#pragma once

#include "harmonet/Export.h"
#include "harmonet/files/mpeg/BitReader.h"
#include "harmonet/files/mpeg/SideInfo.h"
#include "harmonet/files/mpeg/StandardTables.h"

namespace Quon
{

/// The parts of an MPEG frame ahead of its Huffman data: header, side information, scale factors. Functions
/// on plain records for SndFileMP3; they allocate nothing and keep nothing.

inline constexpr int frameHeaderBytes = 4;
/// Of the largest side information.
inline constexpr int maxSideInfoBytes = 32;

/// The four bytes at the start of a frame as one number.
HARMONET_INTERNAL_API unsigned LoadFrameHeader(const unsigned char* bytes);
/// Eleven bits of ones, with which a frame begins.
bool HasFrameSync(unsigned headerBits);
/// The fields, whatever they hold.
HARMONET_INTERNAL_API FrameHeader SplitFrameHeader(unsigned headerBits);
/// Layer III of MPEG-1 or MPEG-2, with a bitrate and a rate from the tables: what is played.
bool IsPlayable(const FrameHeader& header);

/// These need a playable header.
int BitrateKbps(const FrameHeader& header);
HARMONET_INTERNAL_API int SampleRateHz(const FrameHeader& header);
int SideInfoBytes(const FrameHeader& header);
/// The bytes of the frame behind its header.
HARMONET_INTERNAL_API int FrameBytes(const FrameHeader& header);
int FrameSamples(const FrameHeader& header);
/// `byStandard`, here and below, stands for the rules of the standard where this library has its own.
const BandTable& BandsOf(const FrameHeader& header, bool byStandard);

/// Reads all of the side information, and works out the starts of the regions and the gains on the way. A
/// region that would start behind the last band starts at line 576.
void ParseSideInfo(BitReader& reader, const FrameHeader& header, bool byStandard, SideInfo& sideInfo);

/// Reads the scale factors of one granule and channel and returns the bits that they took. What is not
/// sent keeps its value: `scaleFactors` is zeroed once per frame, since granule 1 can share granule 0's. In
/// MPEG-2 it sets the granule's `preflag`.
int ReadScaleFactors(BitReader& reader, const FrameHeader& header, bool byStandard, int granule, int channel,
    SideInfo& sideInfo, ScaleFactors& scaleFactors);

/// For each band of an MPEG-2 granule's right channel, the value that the standard takes for "not intensity
/// coded": the largest one that the position's bits can hold. Positions without bits have none, -1.
void FindIntensityMarks(const GranuleInfo& right, ScaleFactors& marks);

} // namespace Quon
