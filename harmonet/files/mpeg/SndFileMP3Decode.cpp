// Decoding of one MPEG frame: filling `frameBuffer`, and the stages in their order.

#include "harmonet/files/mpeg/HybridStage.h"
#include "harmonet/files/mpeg/SndFileMP3.h"
#include "harmonet/files/mpeg/SpectrumStage.h"
#include "harmonet/files/mpeg/StereoStage.h"

#include <algorithm>
#include <cstring>

namespace Quon
{

namespace
{

/// The long part of a mixed block has positions for eight bands. In MPEG-2 its lines are those of six bands.
constexpr int lastMixedLongBand = 7;
constexpr int standardLastMixedLongBand = 5;

/// Truncates towards zero and clips; NaN becomes 0.
unsigned char ToPcm8(float sample)
{
    const float scaled = sample * 255.0F + 128.0F;
    return scaled >= 0.0F ? static_cast<unsigned char>(std::min(scaled, 255.0F))
                          : static_cast<unsigned char>(0);
}

} // namespace

bool SndFileMP3::ReadFrame()
{
    previousLength = frameLength;
    const int reservoirHeld = std::max(previousLength - sideInfoLength, 0);
    if (!ReadHeader()) {
        return false;
    }
    std::memset(scaleFactors, 0, sizeof scaleFactors);

    int headBytesTaken = frameHeaderBytes;
    if (header.protection == 0) {
        if (headBytesHeld < headBytesTaken + crcBytes) {
            return false;
        }
        readPosition += crcBytes;
        frameLength -= crcBytes;
        headBytesTaken += crcBytes;
    }
    if (headBytesHeld < headBytesTaken + sideInfoLength) {
        return false;
    }
    readPosition += sideInfoLength;
    if (!FillFrameBuffer(headBytes + headBytesTaken, reservoirHeld)) {
        return false;
    }
    for (int granule = 0; granule < header.Granules(); ++granule) {
        DecodeGranule(granule);
    }
    return true;
}

// The side information is stored separately until the reservoir has been moved: if it is longer than that of
// the previous MPEG frame, it would overwrite the first bytes of the reservoir.
bool SndFileMP3::FillFrameBuffer(const unsigned char* sideInfoBytes, int reservoirHeld)
{
    reader.Set(sideInfoBytes);
    ParseSideInfo();
    const int reservoir = std::min(sideInfo.main_data_begin, reservoirHeld);
    reservoirMissing = reservoir < sideInfo.main_data_begin;
    const int newBytes = frameLength - sideInfoLength;
    unsigned char* const mainData = frameBuffer + sideInfoLength;
    std::memmove(mainData, frameBuffer + previousLength - reservoir, static_cast<std::size_t>(reservoir));
    std::memcpy(frameBuffer, sideInfoBytes, static_cast<std::size_t>(sideInfoLength));
    frameLength += reservoir;
    if (Read(mainData + reservoir, newBytes, readPosition) < newBytes) {
        return false;
    }
    readPosition += newBytes;
    reader.Set(mainData);
    return true;
}

void SndFileMP3::DecodeGranule(int granule)
{
    alignas(64) float xr[maxChannels * spectrumStride];
    alignas(64) float hybrid[slotsPerGranule * subbandCount];
    alignas(64) float samples[maxChannels * spectrumStride];
    const int channelCount = header.Channels();
    for (int channel = 0; channel < channelCount; ++channel) {
        GranuleInfo* const info = &sideInfo.channels[channel].granules[granule];
        float* const spectrum = xr + channel * spectrumStride;
        if (reservoirMissing) {
            std::fill_n(spectrum, linesPerGranule, 0.0F);
            limits[channel] = {{-1, -1, -1, -1}, -1};
            continue;
        }
        ReadScaleFactors(granule, channel);
        DecodeSpectrum(spectrum, info, channel);
    }
    if (msStereo || intensityStereo) {
        limits[0].subbandLimit = limits[1].subbandLimit =
            std::max(limits[0].subbandLimit, limits[1].subbandLimit);
        Stereo(xr, &sideInfo.channels[0].granules[granule]);
    }
    for (int channel = 0; channel < channelCount; ++channel) {
        GranuleInfo* const info = &sideInfo.channels[channel].granules[granule];
        float* const spectrum = xr + channel * spectrumStride;
        AliasReduction(spectrum, info, channel);
        Hybrid(hybrid, spectrum, info, channel);
        Synthesis(hybrid, channel, samples + channel * spectrumStride);
    }
    StorePcm(samples, pcmBuffer + granule * linesPerGranule * channelCount * bytesPerSample);
}

void SndFileMP3::ParseSideInfo()
{
    Quon::ParseSideInfo(reader, header, byStandard, sideInfo);
}

void SndFileMP3::ReadScaleFactors(int granule, int channel)
{
    part2Bits =
        Quon::ReadScaleFactors(reader, header, byStandard, granule, channel, sideInfo, scaleFactors[channel]);
}

// Wherever the codes end, before or beyond the budget, the next granule and channel begin after the bits that
// the side information assigns to this one.
void SndFileMP3::DecodeSpectrum(float* xr, GranuleInfo* info, int channel)
{
    alignas(64) float lines[spectrumStride];
    const int budget = info->part2_3_length - part2Bits;
    const int lineCount =
        kernels->decodeLines(*tables, *info, reader.BitPointer(), reader.BitOffset(), budget, lines);
    reader.Move(budget);
    const RequantiseInput input{
        *info, scaleFactors[channel], BandsOf(header, byStandard), lineCount, byStandard};
    limits[channel] = Requantise(*tables, *kernels, input, lines, xr);
}

void SndFileMP3::Stereo(float* xr, GranuleInfo* first)
{
    float* const right = xr + spectrumStride;
    if (!intensityStereo) {
        // The subbands that alias reduction reads.
        const int subbands = std::min(limits[0].subbandLimit + 3, subbandCount);
        kernels->midSide(xr, right, subbands * linesPerSubband);
        return;
    }
    IntensityInput input{header.IsMpeg1(), msStereo, *first, scaleFactors[1], limits[1],
        BandsOf(header, byStandard), first->scalefac_compress & 1, lastMixedLongBand, nullptr};
    ScaleFactors marks = {};
    if (byStandard && !header.IsMpeg1()) {
        const GranuleInfo& rightInfo = sideInfo.channels[1].granules[0];
        FindIntensityMarks(rightInfo, marks);
        input.marks = &marks;
        input.scale = rightInfo.scalefac_compress & 1;
        input.lastMixedLongBand = standardLastMixedLongBand;
    }
    ApplyIntensityStereo(tables->intensity, input, xr, right);
}

void SndFileMP3::AliasReduction(float* xr, GranuleInfo* info, int channel)
{
    ReduceAlias(*tables, *kernels, *info, limits[channel].subbandLimit, xr);
}

void SndFileMP3::Hybrid(float* out, float* in, GranuleInfo* info, int channel)
{
    TransformHybrid(*tables, *kernels, *info, limits[channel].subbandLimit, in,
        overlapBuffer + channel * overlapPerChannel, out);
}

void SndFileMP3::Synthesis(float* subbands, int channel, float* samples)
{
    kernels->synthesis(tables->synthesis, subbands, synthBuffer + channel * synthesisHistorySize, samples);
}

void SndFileMP3::StorePcm(const float* samples, unsigned char* out) const
{
    const int channelCount = header.Channels();
    if (bytesPerSample == 2) {
        const float* const right = channelCount == 2 ? samples + spectrumStride : nullptr;
        kernels->storePcm16(samples, right, linesPerGranule, out);
        return;
    }
    for (int i = 0; i < linesPerGranule; ++i) {
        for (int channel = 0; channel < channelCount; ++channel) {
            *out++ = ToPcm8(samples[channel * spectrumStride + i]);
        }
    }
}

} // namespace Quon
