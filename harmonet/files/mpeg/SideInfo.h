#pragma once

namespace Quon
{

/// Plain records of the information in an MPEG frame before its main data. Owned by the decoder (SndFileMP3),
/// filled by the functions of FrameParser.h and read by the decoding stages.

inline constexpr int maxChannels = 2;
inline constexpr int maxGranules = 2;
/// Spectral lines of one channel in one granule, which yield as many sample frames.
inline constexpr int linesPerGranule = 576;
inline constexpr int subbandCount = 32;
inline constexpr int linesPerSubband = 18;
inline constexpr int longBandCount = 22;
inline constexpr int shortBandCount = 13;
inline constexpr int shortWindowCount = 3;
/// Lines at the bottom of a mixed block that are coded as a long block.
inline constexpr int mixedLongLines = 36;
/// The `block_type` of three short windows.
inline constexpr int blockTypeShort = 2;

/// The fields of an MPEG frame header after the sync pattern, in their order.
struct FrameHeader
{
    int version; ///< 3 is MPEG-1, 2 is MPEG-2.
    int layer; ///< As coded: 1 is Layer III.
    int protection; ///< 0: a CRC follows the header.
    int bitrateIndex;
    int sampleRateIndex;
    int padding;
    int privateBit;
    int mode; ///< 1 is joint stereo, 3 is mono.
    int modeExtension;
    int copyright;
    int original;
    int emphasis;

    bool IsMpeg1() const { return version == 3; }
    int Channels() const { return mode == 3 ? 1 : 2; }
    int Granules() const { return IsMpeg1() ? 2 : 1; }
    /// Mid/side and intensity coding exist in joint stereo only.
    bool MsStereo() const { return mode == 1 && (modeExtension & 2) != 0; }
    bool IntensityStereo() const { return mode == 1 && (modeExtension & 1) != 0; }
};

/// Side information of one channel in one granule.
struct GranuleInfo
{
    int part2_3_length;
    int big_values;
    int global_gain;
    int scalefac_compress;
    int window_switching_flag;
    int block_type; ///< 0 without window switching.
    int mixed_block_flag; ///< 0 without window switching.
    int table_select[3];
    int subblock_gain[3];
    int region1Start; ///< First spectral line of region 1.
    int region2Start; ///< First spectral line of region 2.
    int preflag;
    int scalefac_scale;
    int count1table_select;
    int gain[4]; ///< Gain table indices of long blocks and of each short window.

    bool IsShort() const { return block_type == blockTypeShort; }
    bool IsMixed() const { return IsShort() && mixed_block_flag != 0; }
};

struct ChannelInfo
{
    int scfsi[4]; ///< Groups of scale factors that granule 1 copies from granule 0.
    GranuleInfo granules[maxGranules];
};

struct SideInfo
{
    int main_data_begin; ///< Bytes of main data before this MPEG frame.
    int private_bits;
    ChannelInfo channels[maxChannels];
};

/// The scale factors of one channel. Those of the last long and short band are not coded and stay 0.
struct ScaleFactors
{
    int longBands[longBandCount + 1];
    int shortBands[shortWindowCount][shortBandCount];
};

/// The extent of the spectrum of one channel in one granule.
struct SpectrumLimits
{
    /// The highest band with a value other than 0, in the long part and in each short window; -1 if none.
    int bandLimit[1 + shortWindowCount];
    /// The highest subband with content; -1 if there is none.
    int subbandLimit;
};

} // namespace Quon
