#include "harmonet/files/SndFileAdpcm.h"

#include "harmonet/engine/File.h"
#include "harmonet/files/LittleEndian.h"
#include "harmonet/files/RiffWalk.h"
#include "harmonet/files/SndFileHandle.h"
#include "harmonet/files/SndNode.h"

#include <algorithm>
#include <limits>
#include <new>

namespace Quon
{

namespace
{

constexpr int pcmBytesPerSample = 2;

/// Stores decoded samples consecutively in the caller's buffer.
struct PcmStore
{
    void Put(int sample)
    {
        StoreLittle16(place, sample);
        place += pcmBytesPerSample;
    }

    unsigned char* place;
};

/// Discards samples that are decoded only for the state after them.
struct PcmDrop
{
    void Put(int) {}
};

} // namespace

SndFileAdpcm::~SndFileAdpcm()
{
    SndFileAdpcm::CloseFile(0, nullptr);
}

bool SndFileAdpcm::OpenMemory(void*, unsigned long, WaveFormatEx*)
{
    CloseFile(0, nullptr);
    return false;
}

bool SndFileAdpcm::Open(SndNode* newNode)
{
    SndFile::Open(newNode);
    const auto* info = static_cast<const AdpcmNodeInfo*>(newNode->nodeInfo);
    if (fileType != FileAdpcm || info == nullptr) {
        Abandon();
        return false;
    }
    blockAlign = info->blockAlign;
    numCoef = info->numCoef;
    std::copy(std::begin(info->coefs), std::end(info->coefs), coefs);
    if (!IsPlayable()) {
        Abandon();
        return false;
    }
    soundLength = CalcLength(soundSamples);
    StartDecoder();
    return true;
}

bool SndFileAdpcm::OpenHandle(SndFileHandle* newHandle)
{
    if (!TakeHandle(newHandle)) {
        return false;
    }
    if (!ParseWaveAdpcm()) {
        Abandon();
        return false;
    }
    StartDecoder();
    return true;
}

bool SndFileAdpcm::ParseWaveAdpcm()
{
    const WaveData found = FindWaveData(*handle, [this](RiffWalk& walk) { return TakeFormat(walk); });
    if (!found.IsWhole()) {
        return false;
    }
    fileType = FileAdpcm;
    dataOffset = static_cast<std::uint32_t>(found.offset);
    size = found.bytes;
    soundSamples = ClampSamples(found.LimitSamples(CountSamples(size)));
    soundLength = CalcLength(soundSamples);
    return true;
}

bool SndFileAdpcm::TakeFormat(RiffWalk& walk)
{
    constexpr unsigned int coefsOffset = 22;
    constexpr unsigned int coefPairBytes = 4;
    if (walk.GetSize() < RiffWalk::minFormatBytes || walk.GetSize() > RiffWalk::maxFormatBytes) {
        return false;
    }
    const WaveFormatEx format = walk.ReadFormat();
    unsigned char bytes[RiffWalk::maxFormatBytes] = {};
    walk.ReadContent(bytes, static_cast<int>(walk.GetSize()));
    numCoef = LoadLittle16(bytes + 20);
    if (format.formatTag != waveTagAdpcm || numCoef > maxAdpcmCoefs ||
        walk.GetSize() < numCoef * coefPairBytes + coefsOffset) {
        return false;
    }
    for (unsigned int i = 0; i < numCoef; ++i) {
        const unsigned char* pair = bytes + coefsOffset + i * coefPairBytes;
        coefs[i] = {LoadLittleSigned16(pair), LoadLittleSigned16(pair + 2)};
    }
    bytesPerSample = pcmBytesPerSample;
    sampleFrequency = static_cast<int>(format.samplesPerSecond);
    channels = format.channels;
    blockAlign = format.blockAlign;
    return IsPlayable();
}

bool SndFileAdpcm::IsPlayable() const
{
    return (channels == 1 || channels == 2) && sampleFrequency > 0 && numCoef <= maxAdpcmCoefs &&
        blockAlign <= maxBlockBytes && FramesInBlock(static_cast<int>(blockAlign)) > 0;
}

std::uint64_t SndFileAdpcm::CountSamples(std::uint64_t bytes) const
{
    const auto blockFrames = static_cast<std::uint64_t>(FramesInBlock(static_cast<int>(blockAlign)));
    const int rest = static_cast<int>(bytes % blockAlign);
    const int restFrames = rest > BlockHeadBytes() ? FramesInBlock(rest) : 0;
    return bytes / blockAlign * blockFrames + static_cast<std::uint64_t>(restFrames);
}

void SndFileAdpcm::StartDecoder()
{
    blockBuffer = static_cast<unsigned char*>(Alloc::New(blockAlign));
    Rewind();
}

void* SndFileAdpcm::CreateNodeInfo()
{
    auto* info = new (Alloc::New(sizeof(AdpcmNodeInfo))) AdpcmNodeInfo;
    info->blockAlign = blockAlign;
    info->numCoef = numCoef;
    std::copy(std::begin(coefs), std::end(coefs), info->coefs);
    return info;
}

void SndFileAdpcm::CloseFile(unsigned int soundID, Sound* owner)
{
    Alloc::Delete(blockBuffer);
    blockBuffer = nullptr;
    blockRemaining = 0;
    pendingSkip = 0;
    SndFile::CloseFile(soundID, owner);
}

int SndFileAdpcm::ReadSamples(unsigned char* buffer, int samples)
{
    if (fileType != FileAdpcm) {
        return 0;
    }
    if (pendingSkip != 0) {
        currentSample -= pendingSkip;
        DecodeSkip(pendingSkip);
        pendingSkip = 0;
    }
    const int wanted = std::min(samples, std::numeric_limits<int>::max() - currentSample);
    PcmStore store{buffer};
    int done = 0;
    while (done < wanted) {
        if (blockRemaining > 0) {
            const int steps = std::min(wanted - done, blockRemaining);
            DecodeSteps(store, steps);
            done += steps;
        }
        else {
            if (!ReadBlock()) {
                break;
            }
            for (int channel = 0; channel < channels; ++channel) {
                store.Put(channelStates[channel].sample2);
            }
            ++done;
        }
    }
    currentSample += done;
    return done;
}

int SndFileAdpcm::SkipSamples(int samples)
{
    if (fileType != FileAdpcm) {
        return 0;
    }
    const int skipped = std::clamp(samples, 0, std::max(soundSamples - currentSample, 0));
    currentSample += skipped;
    pendingSkip += skipped;
    return skipped;
}

int SndFileAdpcm::DecodeSkip(int samples)
{
    const int count = std::min(samples, soundSamples - currentSample);
    int done = 0;
    if (count > blockRemaining) {
        done = SkipBlocks(count);
    }
    PcmDrop drop;
    while (done < count) {
        if (blockRemaining <= 0) {
            if (!ReadBlock()) {
                break;
            }
            ++done;
        }
        else if (count - done >= blockRemaining) {
            // The next block has its own state, so that of this one is not needed.
            done += blockRemaining;
            blockRemaining = 0;
        }
        else {
            const int steps = count - done;
            DecodeSteps(drop, steps);
            done += steps;
        }
    }
    currentSample += done;
    return done;
}

int SndFileAdpcm::SkipBlocks(int count)
{
    const int blockFrames = FramesInBlock(static_cast<int>(blockAlign));
    const int blocks = (count - blockRemaining) / blockFrames;
    const int done = blockRemaining + blocks * blockFrames;
    readPosition += std::uint64_t{blockAlign} * static_cast<unsigned int>(blocks);
    blockRemaining = 0;
    return done;
}

bool SndFileAdpcm::ReadBlock()
{
    if (isDamaged || readPosition > maxDataBytes) {
        return false;
    }
    const int got = Read(blockBuffer, static_cast<int>(blockAlign),
        static_cast<int>(static_cast<std::uint32_t>(readPosition)));
    if (got < BlockHeadBytes()) {
        return false;
    }
    readPosition += static_cast<unsigned int>(got);
    TakeBlockHead();
    for (int channel = 0; channel < channels; ++channel) {
        isDamaged = isDamaged || channelStates[channel].predictor >= numCoef;
    }
    if (isDamaged) {
        return false;
    }
    blockBytes = got;
    blockRemaining = FramesInBlock(got) - 1;
    return true;
}

void SndFileAdpcm::TakeBlockHead()
{
    const unsigned char* field = blockBuffer;
    for (int channel = 0; channel < channels; ++channel) {
        channelStates[channel].predictor = *field++;
    }
    const auto takeNumbers = [&field, this](std::int32_t AdpcmChannelState::*number) {
        for (int channel = 0; channel < channels; ++channel, field += 2) {
            channelStates[channel].*number = LoadLittleSigned16(field);
        }
    };
    takeNumbers(&AdpcmChannelState::delta);
    takeNumbers(&AdpcmChannelState::sample1);
    takeNumbers(&AdpcmChannelState::sample2);
}

template<class Sink>
void SndFileAdpcm::DecodeSteps(Sink& sink, int count)
{
    if (IsAtBlockStart()) {
        for (int channel = 0; channel < channels; ++channel) {
            sink.Put(channelStates[channel].sample1);
        }
        --blockRemaining;
        --count;
    }
    if (IsMono()) {
        DecodeMono(sink, count);
    }
    else {
        DecodeStereo(sink, count);
    }
    blockRemaining -= count;
}

template<class Sink>
void SndFileAdpcm::DecodeMono(Sink& sink, int count)
{
    AdpcmChannelState& state = channelStates[0];
    AdpcmChannel channel(state, coefs[state.predictor]);
    Sink out = sink;
    const unsigned char* codes = blockBuffer + blockBytes - (blockRemaining + 1) / 2;
    if (count > 0 && blockRemaining % 2 != 0) {
        out.Put(channel.Decode(*codes++ & 15U));
        --count;
    }
    for (; count >= 2; count -= 2) {
        const unsigned int both = *codes++;
        out.Put(channel.Decode(both >> 4));
        out.Put(channel.Decode(both & 15U));
    }
    if (count > 0) {
        out.Put(channel.Decode(*codes >> 4U));
    }
    channel.SaveTo(state);
    sink = out;
}

template<class Sink>
void SndFileAdpcm::DecodeStereo(Sink& sink, int count)
{
    AdpcmChannel left(channelStates[0], coefs[channelStates[0].predictor]);
    AdpcmChannel right(channelStates[1], coefs[channelStates[1].predictor]);
    Sink out = sink;
    const unsigned char* codes = blockBuffer + blockBytes - blockRemaining;
    const unsigned char* const end = codes + count;
    while (codes != end) {
        const unsigned int both = *codes++;
        out.Put(left.Decode(both >> 4));
        out.Put(right.Decode(both & 15U));
    }
    left.SaveTo(channelStates[0]);
    right.SaveTo(channelStates[1]);
    sink = out;
}

void SndFileAdpcm::Rewind()
{
    blockRemaining = 0;
    currentSample = 0;
    readPosition = 0;
    pendingSkip = 0;
    isDamaged = false;
}

unsigned long SndFileAdpcm::GetRemainLength()
{
    return CalcRemainLength(FileAdpcm);
}

unsigned long SndFileAdpcm::GetCurrentLength()
{
    return CalcCurrentLength(FileAdpcm);
}

} // namespace Quon
