#include "harmonet/files/mpeg/FrameParser.h"

#include <algorithm>

namespace Quon
{

namespace
{

constexpr int modeMono = 3;
constexpr int codedLayer3 = 1;

/// The last coded long band is 20, the last coded short band 11.
constexpr int codedLongBands = 21;
constexpr int codedShortBands = 12;
/// In a mixed block eight values are for long bands and the rest for short bands from 3 on, in both versions.
/// In MPEG-2 six long bands cover the same lines, and the standard has six values.
constexpr int mixedLongBands = 8;
constexpr int standardLsfMixedLongBands = 6;
constexpr int mixedFirstShortBand = 3;

/// A kilobit in bytes.
constexpr int bytesPerKbit = 125;
constexpr int longestFrameSamples = 1152;

int LongBoundary(const BandTable& bands, int boundary)
{
    return bands.longStart[std::min(boundary, longBandCount)];
}

void ParseRegions(BitReader& reader, const FrameHeader& header, bool byStandard, GranuleInfo& info)
{
    info.window_switching_flag = static_cast<int>(reader.GetBits(1));
    const int tables = info.window_switching_flag != 0 ? 2 : 3;
    if (info.window_switching_flag != 0) {
        info.block_type = static_cast<int>(reader.GetBits(2));
        info.mixed_block_flag = static_cast<int>(reader.GetBits(1));
    }
    for (int i = 0; i < tables; ++i) {
        info.table_select[i] = static_cast<int>(reader.GetBits(5));
    }
    if (info.window_switching_flag != 0) {
        for (int& gain : info.subblock_gain) {
            gain = static_cast<int>(reader.GetBits(3));
        }
        info.region1Start = header.IsMpeg1() || info.block_type == blockTypeShort ? 36 : 54;
        info.region2Start = linesPerGranule;
        return;
    }
    const BandTable& bands = BandsOf(header, byStandard);
    const int region0Count = static_cast<int>(reader.GetBits(4));
    const int region1Count = static_cast<int>(reader.GetBits(3));
    info.region1Start = LongBoundary(bands, region0Count + 1);
    info.region2Start = LongBoundary(bands, region0Count + region1Count + 2);
}

void ParseGranule(BitReader& reader, const FrameHeader& header, bool byStandard, GranuleInfo& info)
{
    info = {};
    info.part2_3_length = static_cast<int>(reader.GetBits(12));
    info.big_values = static_cast<int>(reader.GetBits(9));
    info.global_gain = static_cast<int>(reader.GetBits(8));
    info.scalefac_compress = static_cast<int>(reader.GetBits(header.IsMpeg1() ? 4 : 9));
    ParseRegions(reader, header, byStandard, info);
    if (header.IsMpeg1()) {
        info.preflag = static_cast<int>(reader.GetBits(1));
    }
    info.scalefac_scale = static_cast<int>(reader.GetBits(1));
    info.count1table_select = static_cast<int>(reader.GetBits(1));

    // Two quarter-steps are the factor 1 / sqrt(2) of mid/side stereo, which the stereo stage then omits. It
    // does not if intensity stereo is also on and only some of the lines are mid/side.
    const bool foldMidSide = header.MsStereo() && !header.IntensityStereo();
    info.gain[0] = info.global_gain - (foldMidSide ? 2 : 0);
    for (int window = 0; window < shortWindowCount; ++window) {
        info.gain[1 + window] = info.gain[0] - 8 * info.subblock_gain[window];
    }
}

int ReadLongGroups(
    BitReader& reader, const int* scfsi, bool mayShare, const unsigned char* lengths, int* factors)
{
    constexpr int groupStarts[5] = {0, 6, 11, 16, codedLongBands};
    int bits = 0;
    for (int group = 0; group < 4; ++group) {
        if (mayShare && scfsi[group] != 0) {
            continue;
        }
        const int length = lengths[group / 2];
        for (int band = groupStarts[group]; band < groupStarts[group + 1]; ++band) {
            factors[band] = static_cast<int>(reader.GetBits(length));
            bits += length;
        }
    }
    return bits;
}

int ReadShortBands(BitReader& reader, int firstBand, int endBand, int length,
    int (&factors)[shortWindowCount][shortBandCount])
{
    for (int band = firstBand; band < endBand; ++band) {
        for (auto& window : factors) {
            window[band] = static_cast<int>(reader.GetBits(length));
        }
    }
    return (endBand - firstBand) * shortWindowCount * length;
}

int ReadMpeg1(BitReader& reader, const ChannelInfo& channel, int granule, ScaleFactors& scaleFactors)
{
    const GranuleInfo& info = channel.granules[granule];
    const unsigned char* lengths = scaleFactorLengths[info.scalefac_compress];
    if (!info.IsShort()) {
        return ReadLongGroups(reader, channel.scfsi, granule == 1, lengths, scaleFactors.longBands);
    }
    int bits = 0;
    int firstShortBand = 0;
    if (info.IsMixed()) {
        for (int band = 0; band < mixedLongBands; ++band) {
            scaleFactors.longBands[band] = static_cast<int>(reader.GetBits(lengths[0]));
        }
        bits = mixedLongBands * lengths[0];
        firstShortBand = mixedFirstShortBand;
    }
    bits += ReadShortBands(reader, firstShortBand, 6, lengths[0], scaleFactors.shortBands);
    return bits + ReadShortBands(reader, 6, codedShortBands, lengths[1], scaleFactors.shortBands);
}

/// MPEG-2's packing of the scale factors of a granule and channel: four groups with their counts and bit
/// lengths.
struct LsfLayout
{
    LsfLayout(const GranuleInfo& info, bool intensityChannel)
    {
        // The right channel's scale factors are intensity positions and are packed by separate rules.
        const LsfScaleFactorRow* row = lsfScaleFactorRows + (intensityChannel ? 3 : 0);
        const int value = info.scalefac_compress >> row->halving;
        while (value > row->last) {
            ++row;
        }
        preflag = row->preflag;
        counts = row->counts[info.IsMixed() ? 2 : info.IsShort() ? 1 : 0];
        for (int group = 0; group < 4; ++group) {
            lengths[group] = (value - row->offset) / row->divisor[group] % row->modulus[group];
        }
    }

    int preflag;
    const int* counts;
    int lengths[4];
};

/// The destination of the value with that index in MPEG-2's order of a granule's values.
int* LsfPlace(const GranuleInfo& info, bool byStandard, int index, ScaleFactors& scaleFactors)
{
    int firstShortBand = 0;
    if (!info.IsShort()) {
        return &scaleFactors.longBands[index];
    }
    if (info.IsMixed()) {
        const int longBands = byStandard ? standardLsfMixedLongBands : mixedLongBands;
        if (index < longBands) {
            return &scaleFactors.longBands[index];
        }
        index -= longBands;
        firstShortBand = mixedFirstShortBand;
    }
    return &scaleFactors.shortBands[index % shortWindowCount][firstShortBand + index / shortWindowCount];
}

int ReadMpeg2(
    BitReader& reader, bool intensityChannel, bool byStandard, GranuleInfo& info, ScaleFactors& scaleFactors)
{
    const LsfLayout layout(info, intensityChannel);
    info.preflag = layout.preflag;
    int bits = 0;
    int index = 0;
    for (int group = 0; group < 4; ++group) {
        const int length = layout.lengths[group];
        for (int i = 0; i < layout.counts[group]; ++i) {
            *LsfPlace(info, byStandard, index++, scaleFactors) = static_cast<int>(reader.GetBits(length));
        }
        bits += layout.counts[group] * length;
    }
    return bits;
}

} // namespace

unsigned LoadFrameHeader(const unsigned char* bytes)
{
    return static_cast<unsigned>(bytes[0]) << 24 |
        static_cast<unsigned>(bytes[1] << 16 | bytes[2] << 8 | bytes[3]);
}

bool HasFrameSync(unsigned headerBits)
{
    return headerBits >> 21 == 0x7FF;
}

FrameHeader SplitFrameHeader(unsigned headerBits)
{
    const auto field = [headerBits](int lowestBit, unsigned mask) {
        return static_cast<int>(headerBits >> lowestBit & mask);
    };
    return {field(19, 3), field(17, 3), field(16, 1), field(12, 15), field(10, 3), field(9, 1), field(8, 1),
        field(6, 3), field(4, 3), field(3, 1), field(2, 1), field(0, 3)};
}

bool IsPlayable(const FrameHeader& header)
{
    return header.version >= 2 && header.layer == codedLayer3 && header.bitrateIndex != 0 &&
        header.bitrateIndex != 15 && header.sampleRateIndex != 3;
}

int BitrateKbps(const FrameHeader& header)
{
    return bitratesKbps[header.IsMpeg1() ? 0 : 1][header.bitrateIndex];
}

int SampleRateHz(const FrameHeader& header)
{
    return sampleRatesHz[header.IsMpeg1() ? 0 : 1][header.sampleRateIndex];
}

int SideInfoBytes(const FrameHeader& header)
{
    const bool mono = header.mode == modeMono;
    return header.IsMpeg1() ? (mono ? 17 : 32) : (mono ? 9 : 17);
}

int FrameBytes(const FrameHeader& header)
{
    // The order of the roundings is part of the rule.
    int bytes = BitrateKbps(header) * bytesPerKbit * longestFrameSamples / SampleRateHz(header);
    if (!header.IsMpeg1()) {
        bytes /= 2;
    }
    return bytes + header.padding - frameHeaderBytes;
}

int FrameSamples(const FrameHeader& header)
{
    return header.Granules() * linesPerGranule;
}

const BandTable& BandsOf(const FrameHeader& header, bool byStandard)
{
    constexpr int index24kHz = 1;
    if (byStandard && !header.IsMpeg1() && header.sampleRateIndex == index24kHz) {
        return standardBands24kHz;
    }
    return bandTables[(header.IsMpeg1() ? 0 : 3) + header.sampleRateIndex];
}

void ParseSideInfo(BitReader& reader, const FrameHeader& header, bool byStandard, SideInfo& sideInfo)
{
    sideInfo = {};
    const int channels = header.Channels();
    if (header.IsMpeg1()) {
        sideInfo.main_data_begin = static_cast<int>(reader.GetBits(9));
        sideInfo.private_bits = static_cast<int>(reader.GetBits(channels == 1 ? 5 : 3));
        for (int channel = 0; channel < channels; ++channel) {
            for (int& shared : sideInfo.channels[channel].scfsi) {
                shared = static_cast<int>(reader.GetBits(1));
            }
        }
    }
    else {
        sideInfo.main_data_begin = static_cast<int>(reader.GetBits(8));
        sideInfo.private_bits = static_cast<int>(reader.GetBits(channels == 1 ? 1 : 2));
    }
    for (int granule = 0; granule < header.Granules(); ++granule) {
        for (int channel = 0; channel < channels; ++channel) {
            ParseGranule(reader, header, byStandard, sideInfo.channels[channel].granules[granule]);
        }
    }
}

int ReadScaleFactors(BitReader& reader, const FrameHeader& header, bool byStandard, int granule, int channel,
    SideInfo& sideInfo, ScaleFactors& scaleFactors)
{
    ChannelInfo& info = sideInfo.channels[channel];
    if (header.IsMpeg1()) {
        return ReadMpeg1(reader, info, granule, scaleFactors);
    }
    const bool intensityChannel = channel == 1 && header.IntensityStereo();
    return ReadMpeg2(reader, intensityChannel, byStandard, info.granules[granule], scaleFactors);
}

void FindIntensityMarks(const GranuleInfo& right, ScaleFactors& marks)
{
    const LsfLayout layout(right, true);
    int index = 0;
    for (int group = 0; group < 4; ++group) {
        const int largest = layout.lengths[group] > 0 ? (1 << layout.lengths[group]) - 1 : -1;
        for (int i = 0; i < layout.counts[group]; ++i) {
            *LsfPlace(right, true, index++, marks) = largest;
        }
    }
}

} // namespace Quon
