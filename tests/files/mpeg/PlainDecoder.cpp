#include "PlainDecoder.h"

#include <algorithm>

using namespace Quon;

namespace PlainMpeg
{

Decoder::Header Decoder::ParseHeader(const std::vector<unsigned char>& stream, std::size_t at)
{
    Header result = {};
    result.isMpeg1 = (stream[at + 1] & 8) != 0;
    result.rateIndex = stream[at + 2] >> 2 & 3;
    const int mode = stream[at + 3] >> 6;
    const int extension = stream[at + 3] >> 4 & 3;
    result.channels = mode == 3 ? 1 : 2;
    result.msStereo = mode == 1 && extension >= 2;
    result.intensityStereo = mode == 1 && extension % 2 != 0;
    const int version = result.isMpeg1 ? 0 : 1;
    const int bits = bitratesKbps[version][stream[at + 2] >> 4] * 1000;
    const int slotBytes = result.isMpeg1 ? 144 : 72;
    result.bytes = slotBytes * bits / sampleRatesHz[version][result.rateIndex] + (stream[at + 2] >> 1 & 1);
    result.sideInfoStart = (stream[at + 1] & 1) != 0 ? 4 : 6;
    return result;
}

std::vector<int> Decoder::Decode(const std::vector<unsigned char>& stream)
{
    for (std::size_t at = 0; at + 4 <= stream.size();) {
        header = ParseHeader(stream, at);
        bands = bandTables[(header.isMpeg1 ? 0 : 3) + header.rateIndex];
        const auto bytes = static_cast<std::size_t>(header.bytes);
        DecodeFrame({stream.begin() + static_cast<std::ptrdiff_t>(at),
            stream.begin() + static_cast<std::ptrdiff_t>(at + bytes)});
        at += bytes;
    }
    return pcm;
}

GranuleInfo Decoder::ParseGranule(Bits& bits) const
{
    GranuleInfo info = {};
    info.part2_3_length = bits.Take(12);
    info.big_values = bits.Take(9);
    info.global_gain = bits.Take(8);
    info.scalefac_compress = bits.Take(header.isMpeg1 ? 4 : 9);
    info.window_switching_flag = bits.Take(1);
    if (info.window_switching_flag != 0) {
        info.block_type = bits.Take(2);
        info.mixed_block_flag = bits.Take(1);
        info.table_select[0] = bits.Take(5);
        info.table_select[1] = bits.Take(5);
        for (int& gain : info.subblock_gain) {
            gain = bits.Take(3);
        }
        info.region1Start = header.isMpeg1 || info.block_type == 2 ? 36 : 54;
        info.region2Start = 576;
    }
    else {
        for (int& table : info.table_select) {
            table = bits.Take(5);
        }
        const int region0 = bits.Take(4);
        const int region1 = bits.Take(3);
        info.region1Start = bands.longStart[region0 + 1];
        info.region2Start = bands.longStart[std::min(region0 + region1 + 2, 22)];
    }
    info.preflag = header.isMpeg1 ? bits.Take(1) : 0;
    info.scalefac_scale = bits.Take(1);
    info.count1table_select = bits.Take(1);
    const int gain = info.global_gain - (header.msStereo && !header.intensityStereo ? 2 : 0);
    for (int i = 0; i < 4; ++i) {
        info.gain[i] = gain - (i > 0 ? 8 * info.subblock_gain[i - 1] : 0);
    }
    return info;
}

void Decoder::DecodeFrame(const std::vector<unsigned char>& frame)
{
    Bits side(frame);
    side.SetPosition(8 * header.sideInfoStart);
    const int mainDataBegin = side.Take(header.isMpeg1 ? 9 : 8);
    if (header.isMpeg1) {
        side.Take(header.channels == 1 ? 5 : 3);
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(header.channels); ++channel) {
            for (int& shared : scfsi[channel]) {
                shared = side.Take(1);
            }
        }
    }
    else {
        side.Take(header.channels == 1 ? 1 : 2);
    }
    const int granuleCount = header.isMpeg1 ? 2 : 1;
    for (std::size_t granule = 0; granule < static_cast<std::size_t>(granuleCount); ++granule) {
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(header.channels); ++channel) {
            granules[granule][channel] = ParseGranule(side);
        }
    }
    position = 8 * (static_cast<int>(mainData.size()) - mainDataBegin);
    mainData.insert(mainData.end(), frame.begin() + side.GetPosition() / 8, frame.end());
    scaleFactors = {};
    for (int granule = 0; granule < granuleCount; ++granule) {
        DecodeGranule(granule);
    }
}

void Decoder::ReadScaleFactors(Bits& bits, int granule, std::size_t channel, GranuleInfo& info)
{
    ScaleFactors& to = scaleFactors[channel];
    if (!header.isMpeg1) {
        ReadLsfScaleFactors(bits, channel == 1 && header.intensityStereo, info, to);
        return;
    }
    const int low = scaleFactorLengths[info.scalefac_compress][0];
    const int high = scaleFactorLengths[info.scalefac_compress][1];
    if (info.block_type != 2) {
        for (int band = 0; band < 21; ++band) {
            const std::size_t group = band < 6 ? 0 : band < 11 ? 1 : band < 16 ? 2 : 3;
            if (granule == 0 || scfsi[channel][group] == 0) {
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

void Decoder::ReadLsfScaleFactors(Bits& bits, bool intensityChannel, GranuleInfo& info, ScaleFactors& to)
{
    const int s = info.scalefac_compress;
    const int h = s / 2;
    std::array<int, 4> lengths;
    std::size_t row = 0;
    if (intensityChannel) {
        if (h < 180) {
            row = 3;
            lengths = {h / 36, h % 36 / 6, h % 6, 0};
        }
        else if (h < 244) {
            row = 4;
            lengths = {(h - 180) / 16, (h - 180) % 16 / 4, (h - 180) % 4, 0};
        }
        else {
            row = 5;
            lengths = {(h - 244) / 3, (h - 244) % 3, 0, 0};
        }
    }
    else if (s < 400) {
        lengths = {s / 16 / 5, s / 16 % 5, s % 16 / 4, s % 4};
    }
    else if (s < 500) {
        row = 1;
        lengths = {(s - 400) / 4 / 5, (s - 400) / 4 % 5, (s - 400) % 4, 0};
    }
    else {
        row = 2;
        lengths = {(s - 500) / 3, (s - 500) % 3, 0, 0};
        info.preflag = 1;
    }
    const bool mixed = info.block_type == 2 && info.mixed_block_flag != 0;
    std::vector<int> values;
    for (std::size_t group = 0; group < 4; ++group) {
        const int kind = mixed ? 2 : info.block_type == 2 ? 1 : 0;
        for (int i = 0; i < lsfScaleFactorRows[row].counts[kind][group]; ++i) {
            values.push_back(bits.Take(lengths[group]));
        }
    }
    const std::size_t longCount = mixed ? 8 : info.block_type == 2 ? 0 : 21;
    std::copy_n(values.begin(), longCount, to.longBands);
    for (std::size_t i = longCount; i < values.size(); ++i) {
        const std::size_t index = i - longCount;
        to.shortBands[index % 3][(mixed ? 3 : 0) + index / 3] = values[i];
    }
}

void Decoder::DecodeGranule(int granule)
{
    const auto channelCount = static_cast<std::size_t>(header.channels);
    std::array<Line, 2> xr = {};
    std::array<Limits, 2> limits;
    auto& infos = granules[static_cast<std::size_t>(granule)];
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        GranuleInfo& info = infos[channel];
        Bits bits(mainData);
        bits.SetPosition(position);
        ReadScaleFactors(bits, granule, channel, info);
        const int part2Bits = bits.GetPosition() - position;
        Values values;
        const int lineCount = DecodeValues(bits, info, info.part2_3_length - part2Bits, values);
        position = bits.GetPosition();
        xr[channel] = Requantise(info, scaleFactors[channel], bands, values, lineCount, limits[channel]);
    }
    if (header.msStereo || header.intensityStereo) {
        limits[0].subband = limits[1].subband = std::max(limits[0].subband, limits[1].subband);
        Stereo({header.isMpeg1, header.msStereo, header.intensityStereo}, infos[0], scaleFactors[1],
            limits[1], bands, xr[0], xr[1]);
    }
    std::array<std::vector<double>, 2> samples;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        AliasReduction(infos[channel], xr[channel]);
        samples[channel] = polyphase[channel].Run(
            Hybrid(infos[channel], limits[channel].subband, xr[channel], overlap[channel]));
    }
    for (std::size_t i = 0; i < 576; ++i) {
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            const double scaled = std::clamp(samples[channel][i] * 32767, -32768.0, 32767.0);
            pcm.push_back(static_cast<int>(scaled));
        }
    }
}

} // namespace PlainMpeg
