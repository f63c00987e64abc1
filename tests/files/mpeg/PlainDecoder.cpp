#include "PlainDecoder.h"

#include <algorithm>

using namespace Quon;

namespace PlainMpeg
{

namespace
{

struct Header
{
    Header(const unsigned char* bytes, bool byStandard)
        : mode{(bytes[1] & 8) != 0, bytes[3] >> 6 == 1 && (bytes[3] & 0x20) != 0,
              bytes[3] >> 6 == 1 && (bytes[3] & 0x10) != 0, byStandard}
        , rateIndex(bytes[2] >> 2 & 3)
        , channels(bytes[3] >> 6 == 3 ? 1 : 2)
        , sideInfoStart((bytes[1] & 1) != 0 ? 4 : 6)
    {
        const int version = mode.isMpeg1 ? 0 : 1;
        const int bits = bitratesKbps[version][bytes[2] >> 4] * 1000;
        const int slotBytes = mode.isMpeg1 ? 144 : 72;
        frameBytes = slotBytes * bits / sampleRatesHz[version][rateIndex] + (bytes[2] >> 1 & 1);
    }

    StereoMode mode;
    int rateIndex;
    int channels;
    int sideInfoStart;
    int frameBytes;
};

class Decoder
{
public:
    /// The next frame, and what it adds to the PCM.
    void DecodeFrame(const Header& newHeader, const std::vector<unsigned char>& frame)
    {
        header = newHeader;
        bands = bandTables[(IsMpeg1() ? 0 : 3) + header.rateIndex];
        if (IsLsfByStandard() && header.rateIndex == 1) {
            bands.longStart[18] = 332;
            bands.longWidth[17] = 332 - 278;
            bands.longWidth[18] = 394 - 332;
        }
        Bits side{frame, 8 * header.sideInfoStart};
        const int granuleCount = IsMpeg1() ? 2 : 1;
        const int mainDataBegin = side.Take(IsMpeg1() ? 9 : 8);
        side.Take(!IsMpeg1() ? header.channels : header.channels == 1 ? 5 : 3);
        for (int channel = 0; IsMpeg1() && channel < header.channels; ++channel) {
            for (int& shared : channels[channel].scfsi) {
                shared = side.Take(1);
            }
        }
        for (int granule = 0; granule < granuleCount; ++granule) {
            for (int channel = 0; channel < header.channels; ++channel) {
                channels[channel].granules[granule] = ParseGranule(side);
            }
        }
        bits.position = 8 * (static_cast<int>(mainData.size()) - mainDataBegin);
        mainData.insert(mainData.end(), frame.begin() + side.position / 8, frame.end());
        scaleFactors = {};
        for (int granule = 0; granule < granuleCount; ++granule) {
            DecodeGranule(granule);
        }
    }

    std::vector<int> pcm;

private:
    bool IsMpeg1() const { return header.mode.isMpeg1; }
    bool IsLsfByStandard() const { return header.mode.byStandard && !IsMpeg1(); }

    GranuleInfo ParseGranule(Bits& side) const
    {
        GranuleInfo info = {};
        info.part2_3_length = side.Take(12);
        info.big_values = side.Take(9);
        info.global_gain = side.Take(8);
        info.scalefac_compress = side.Take(IsMpeg1() ? 4 : 9);
        info.window_switching_flag = side.Take(1);
        if (info.window_switching_flag != 0) {
            info.block_type = side.Take(2);
            info.mixed_block_flag = side.Take(1);
            info.table_select[0] = side.Take(5);
            info.table_select[1] = side.Take(5);
            for (int& gain : info.subblock_gain) {
                gain = side.Take(3);
            }
            info.region1Start = IsMpeg1() || info.block_type == 2 ? 36 : 54;
            info.region2Start = 576;
        }
        else {
            for (int& table : info.table_select) {
                table = side.Take(5);
            }
            const int region0 = side.Take(4);
            const int region1 = side.Take(3);
            info.region1Start = bands.longStart[region0 + 1];
            info.region2Start = bands.longStart[std::min(region0 + region1 + 2, 22)];
        }
        info.preflag = IsMpeg1() ? side.Take(1) : 0;
        info.scalefac_scale = side.Take(1);
        info.count1table_select = side.Take(1);
        info.gain[0] = info.global_gain - (header.mode.msStereo && !header.mode.intensityStereo ? 2 : 0);
        for (int window = 0; window < 3; ++window) {
            info.gain[1 + window] = info.gain[0] - 8 * info.subblock_gain[window];
        }
        return info;
    }

    void ReadScaleFactors(int granule, const ChannelInfo& channel, ScaleFactors& to)
    {
        const GranuleInfo& info = channel.granules[granule];
        const int low = scaleFactorLengths[info.scalefac_compress][0];
        const int high = scaleFactorLengths[info.scalefac_compress][1];
        if (info.block_type != 2) {
            for (int band = 0; band < 21; ++band) {
                const int group = band < 6 ? 0 : band < 11 ? 1 : band < 16 ? 2 : 3;
                if (granule == 0 || channel.scfsi[group] == 0) {
                    to.longBands[band] = bits.Take(band < 11 ? low : high);
                }
            }
            return;
        }
        const bool mixed = info.mixed_block_flag != 0;
        for (int band = 0; mixed && band < 8; ++band) {
            to.longBands[band] = bits.Take(low);
        }
        for (int band = mixed ? 3 : 0; band < 12; ++band) {
            for (auto& window : to.shortBands) {
                window[band] = bits.Take(band < 6 ? low : high);
            }
        }
    }

    void ReadLsfScaleFactors(bool intensityChannel, GranuleInfo& info, ScaleFactors& to)
    {
        // The four lengths are the digits of the value after `first`, the last three to these bases.
        constexpr struct
        {
            int first;
            int bases[3];
        } rows[] = {{0, {5, 4, 4}}, {400, {5, 4, 1}}, {500, {3, 1, 1}}, {0, {6, 6, 1}}, {180, {4, 4, 1}},
            {244, {3, 1, 1}}};
        const int value = intensityChannel ? info.scalefac_compress / 2 : info.scalefac_compress;
        int row = intensityChannel ? 5 : 2;
        while (value < rows[row].first) {
            --row;
        }
        info.preflag = row == 2 ? 1 : 0;
        std::array<int, 4> lengths;
        lengths[0] = value - rows[row].first;
        for (int digit = 3; digit > 0; --digit) {
            lengths[digit] = lengths[0] % rows[row].bases[digit - 1];
            lengths[0] /= rows[row].bases[digit - 1];
        }
        const bool isShort = info.block_type == 2;
        const bool mixed = isShort && info.mixed_block_flag != 0;
        const int longCount = mixed ? (header.mode.byStandard ? 6 : 8) : isShort ? 0 : 21;
        int index = 0;
        for (int group = 0; group < 4; ++group) {
            const int end = index + lsfScaleFactorRows[row].counts[mixed ? 2 : isShort ? 1 : 0][group];
            for (; index < end; ++index) {
                const int place = index - longCount;
                int& factor =
                    place < 0 ? to.longBands[index] : to.shortBands[place % 3][(mixed ? 3 : 0) + place / 3];
                factor = bits.Take(lengths[group]);
                int& mark = place < 0 ? marks.longBands[index]
                                      : marks.shortBands[place % 3][(mixed ? 3 : 0) + place / 3];
                mark = lengths[group] > 0 ? (1 << lengths[group]) - 1 : -1;
            }
        }
    }

    void DecodeGranule(int granule)
    {
        std::array<Line, 2> xr = {};
        std::array<Limits, 2> limits;
        for (int channel = 0; channel < header.channels; ++channel) {
            GranuleInfo& info = channels[channel].granules[granule];
            const int end = bits.position + info.part2_3_length;
            if (IsMpeg1()) {
                ReadScaleFactors(granule, channels[channel], scaleFactors[channel]);
            }
            else {
                marks = {};
                ReadLsfScaleFactors(channel == 1 && header.mode.intensityStereo, info, scaleFactors[channel]);
            }
            Values values;
            const int lineCount = DecodeValues(bits, info, end - bits.position, values);
            xr[channel] = Requantise(info, scaleFactors[channel], bands, values, lineCount, limits[channel],
                header.mode.byStandard);
        }
        if (header.mode.msStereo || header.mode.intensityStereo) {
            limits[0].subband = limits[1].subband = std::max(limits[0].subband, limits[1].subband);
            const RightChannel right{channels[1].granules[granule], scaleFactors[1], marks, limits[1]};
            Stereo(header.mode, channels[0].granules[granule], right, bands, xr[0], xr[1]);
        }
        std::array<std::vector<double>, 2> samples;
        for (int channel = 0; channel < header.channels; ++channel) {
            const GranuleInfo& info = channels[channel].granules[granule];
            AliasReduction(info, xr[channel]);
            samples[channel] = Polyphase(
                Hybrid(info, limits[channel].subband, xr[channel], overlap[channel]), polyphase[channel]);
        }
        for (int i = 0; i < linesPerGranule; ++i) {
            for (int channel = 0; channel < header.channels; ++channel) {
                pcm.push_back(static_cast<int>(std::clamp(samples[channel][i] * 32767, -32768.0, 32767.0)));
            }
        }
    }

    static constexpr unsigned char noHeader[4] = {};

    Header header{noHeader, false};
    BandTable bands = {};
    std::vector<unsigned char> mainData; ///< Of this frame and of all before it.
    Bits bits{mainData};
    std::array<ChannelInfo, 2> channels = {};
    std::array<ScaleFactors, 2> scaleFactors = {};
    ScaleFactors marks = {};
    std::array<Subbands, 2> overlap = {};
    std::array<PolyphaseState, 2> polyphase = {};
};

} // namespace

std::vector<int> Decode(const std::vector<unsigned char>& stream, bool byStandard)
{
    Decoder decoder;
    for (auto at = stream.begin(); stream.end() - at >= 4;) {
        const Header header(&*at, byStandard);
        const auto end = at + header.frameBytes;
        decoder.DecodeFrame(header, {at, end});
        at = end;
    }
    return decoder.pcm;
}

} // namespace PlainMpeg
