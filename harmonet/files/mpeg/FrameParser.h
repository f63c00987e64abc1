#pragma once

#include "harmonet/Export.h"
#include "harmonet/files/mpeg/BitReader.h"
#include "harmonet/files/mpeg/SideInfo.h"
#include "harmonet/files/mpeg/StandardTables.h"

namespace Quon
{

/// The parts of an MPEG frame before its Huffman data: header, side information, scale factors. Stateless
/// functions on plain records for SndFileMP3; they do not allocate.

inline constexpr int frameHeaderBytes = 4;
/// Size of the largest side information.
inline constexpr int maxSideInfoBytes = 32;

/// The four bytes at the start of a frame as one number.
HARMONET_INTERNAL_API unsigned LoadFrameHeader(const unsigned char* bytes);
/// Whether the header begins with the sync pattern: eleven set bits.
bool HasFrameSync(unsigned headerBits);
/// Splits the header into its fields, without checks.
HARMONET_INTERNAL_API FrameHeader SplitFrameHeader(unsigned headerBits);
/// Whether the header is playable: Layer III of MPEG-1 or MPEG-2, with a bitrate and a rate from the tables.
bool IsPlayable(const FrameHeader& header);

/// These need a playable header.
int BitrateKbps(const FrameHeader& header);
HARMONET_INTERNAL_API int SampleRateHz(const FrameHeader& header);
int SideInfoBytes(const FrameHeader& header);
/// The bytes of the MPEG frame after its header.
HARMONET_INTERNAL_API int FrameBytes(const FrameHeader& header);
int FrameSamples(const FrameHeader& header);
/// Here and below, `byStandard` selects the rules of the standard where this library has its own.
const BandTable& BandsOf(const FrameHeader& header, bool byStandard);

/// Reads all of the side information, and computes the starts of the regions and the gains. A region that
/// would start after the last band starts at line 576.
void ParseSideInfo(BitReader& reader, const FrameHeader& header, bool byStandard, SideInfo& sideInfo);

/// Reads the scale factors of one granule and channel and returns the number of bits read. Scale factors that
/// are not sent keep their value: `scaleFactors` is zeroed once per MPEG frame, since granule 1 can share
/// granule 0's. In MPEG-2 it sets the granule's `preflag`.
int ReadScaleFactors(BitReader& reader, const FrameHeader& header, bool byStandard, int granule, int channel,
    SideInfo& sideInfo, ScaleFactors& scaleFactors);

/// For each band of an MPEG-2 granule's right channel, the value that means "not intensity coded" in the
/// standard: the maximum of the position's bits. Positions without bits have none, -1.
void FindIntensityMarks(const GranuleInfo& right, ScaleFactors& marks);

} // namespace Quon
