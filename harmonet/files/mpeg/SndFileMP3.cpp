// The stream: opening, positions, and reading of MPEG frames. SndFileMP3Decode.cpp decodes their content,
// MpegContainer.cpp handles the container.

#include "harmonet/files/mpeg/SndFileMP3.h"

#include "harmonet/engine/File.h"
#include "harmonet/files/LittleEndian.h"
#include "harmonet/files/SndFileCache.h"
#include "harmonet/files/SndFileHandle.h"
#include "harmonet/files/SndNode.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Quon
{

namespace
{

constexpr int maxInt = std::numeric_limits<int>::max();
/// Positions and counts are ints: a stream ends where the next MPEG frame could overflow them.
constexpr int maxReadPosition = maxInt - 4096;

/// The number of bytes that FindSync() reads at once.
constexpr int smallSearchBytes = 1024;
constexpr int largeSearchBytes = 16384;

/// Whether a sync pattern begins in the block. Branchless, so that the compiler vectorises it: bytes that
/// look like half a pattern cost no more than others.
constexpr int searchBlock = 64;

bool HasSync(const unsigned char* bytes)
{
    unsigned char found = 0;
    for (int i = 0; i < searchBlock; ++i) {
        found |= static_cast<unsigned char>((bytes[i] == 0xFF ? 1 : 0) & (bytes[i + 1] >= 0xE0 ? 1 : 0));
    }
    return found != 0;
}

/// Returns the first of `count` positions at which a sync pattern begins; `count` or more if there is none.
int FindSyncAmong(const unsigned char* bytes, int count)
{
    int place = 0;
    while (place + searchBlock <= count && !HasSync(bytes + place)) {
        place += searchBlock;
    }
    while (place < count && !HasFrameSync(LoadFrameHeader(bytes + place))) {
        ++place;
    }
    return place;
}

template<class T>
void AllocateZeroed(T*& buffer, int bytes)
{
    buffer = static_cast<T*>(Alloc::New(static_cast<unsigned int>(bytes)));
    std::memset(buffer, 0, static_cast<std::size_t>(bytes));
}

template<class T>
void Free(T*& buffer)
{
    Alloc::Delete(buffer);
    buffer = nullptr;
}

} // namespace

int SndFileMP3::livingObjects = 0;
DecoderTables* SndFileMP3::tables = nullptr;
const DecoderKernels* SndFileMP3::kernels = nullptr;

SndFileMP3::SndFileMP3()
{
    if (livingObjects == 0) {
        tables = new DecoderTables;
    }
    if (kernels == nullptr) {
        kernels = &SelectKernels();
    }
    ++livingObjects;
}

SndFileMP3::~SndFileMP3()
{
    --livingObjects;
    SndFileMP3::CloseFile(0, nullptr);
    if (livingObjects == 0) {
        delete tables;
        tables = nullptr;
    }
}

void SndFileMP3::UseKernels(const DecoderKernels* chosen)
{
    kernels = chosen != nullptr ? chosen : &SelectKernels();
}

bool SndFileMP3::OpenMemory(void*, unsigned long, WaveFormatEx*)
{
    CloseFile(0, nullptr);
    return false;
}

bool SndFileMP3::Open(SndNode* newNode)
{
    CloseFile(0, nullptr);
    ChooseRules();
    SndFile::Open(newNode);
    if (fileType != FileMP3) {
        Abandon();
        return false;
    }
    soundLength = CalcLength(soundSamples);
    bytesPerSample = bytesPerSample == 1 ? 1 : 2;
    AllocateBuffers();
    Rewind();
    if (!ReadHeader()) {
        Abandon();
        return false;
    }
    FinishOpen();
    return true;
}

bool SndFileMP3::OpenHandle(SndFileHandle* newHandle)
{
    CloseFile(0, nullptr);
    ChooseRules();
    dataOffset = 0;
    if (!newHandle->GetFile().IsOpen()) {
        return false;
    }
    const unsigned long fileBytes = newHandle->GetFile().Size();
    AllocateBuffers();
    Rewind();
    handle = newHandle;
    size = static_cast<std::uint32_t>(fileBytes);
    ParseContainer();
    if (!ReadHeader()) {
        Abandon();
        return false;
    }
    if (soundSamples < 0) {
        CountSamples();
    }
    soundLength = CalcLength(soundSamples);
    FinishOpen();
    return true;
}

void SndFileMP3::ChooseRules()
{
    byStandard = sndFileCache != nullptr && sndFileCache->IsMpegStandard();
}

void SndFileMP3::CountSamples()
{
    soundSamples = 0;
    do {
        soundSamples += frameSamples;
        readPosition += frameLength;
    } while (soundSamples <= maxInt - maxFrameSamples && ReadHeader());
}

// Keep the format of the last header read, and start with an empty reservoir.
void SndFileMP3::FinishOpen()
{
    fileType = FileMP3;
    readPosition = 0;
    frameLength = 0;
    pcmIndex = frameSamples;
}

void* SndFileMP3::CreateNodeInfo()
{
    return nullptr;
}

void SndFileMP3::CloseFile(unsigned int soundID, Sound* owner)
{
    FreeBuffers();
    Rewind();
    SndFile::CloseFile(soundID, owner);
}

void SndFileMP3::AllocateBuffers()
{
    static_assert(sizeof(SndFileMP3) +
            maxChannels * (overlapPerChannel + synthesisHistorySize) * sizeof(float) + frameBufferBytes +
            pcmBufferBytes <
        24 * 1024);
    FreeBuffers();
    AllocateZeroed(overlapBuffer, static_cast<int>(maxChannels * overlapPerChannel * sizeof(float)));
    AllocateZeroed(synthBuffer, static_cast<int>(maxChannels * synthesisHistorySize * sizeof(float)));
    AllocateZeroed(frameBuffer, frameBufferBytes);
    AllocateZeroed(pcmBuffer, pcmBufferBytes);
}

void SndFileMP3::FreeBuffers()
{
    Free(overlapBuffer);
    Free(synthBuffer);
    Free(frameBuffer);
    Free(pcmBuffer);
}

// A broken stream can read beyond its own bytes in `frameBuffer`: clear it for reproducible output.
void SndFileMP3::Rewind()
{
    currentSample = 0;
    readPosition = 0;
    previousLength = 0;
    frameLength = 0;
    frameSamples = 0;
    pcmIndex = 0;
    windowHeld = 0;
    frameMarks.Clear();
    if (overlapBuffer != nullptr) {
        std::fill_n(overlapBuffer, maxChannels * overlapPerChannel, 0.0F);
    }
    if (synthBuffer != nullptr) {
        std::fill_n(synthBuffer, maxChannels * synthesisHistorySize, 0.0F);
    }
    if (frameBuffer != nullptr) {
        std::fill_n(frameBuffer, frameBufferBytes, static_cast<unsigned char>(0));
    }
}

unsigned long SndFileMP3::GetRemainLength()
{
    return CalcRemainLength(FileMP3);
}

unsigned long SndFileMP3::GetCurrentLength()
{
    return CalcCurrentLength(FileMP3);
}

int SndFileMP3::Read(unsigned char* buffer, int bytes, int position)
{
    if (handle == nullptr || bytes <= 0 || bytes > windowCapacity) {
        return SndFile::Read(buffer, bytes, position);
    }
    if (position < windowBegin || position - windowBegin > windowHeld - bytes) {
        windowBegin = position;
        windowHeld = SndFile::Read(window, windowCapacity, position);
    }
    const int offset = position - windowBegin;
    const int given = std::min(bytes, windowHeld - offset);
    std::memcpy(buffer, window + offset, static_cast<std::size_t>(given));
    return given;
}

bool SndFileMP3::ReadHeader()
{
    if (readPosition > maxReadPosition) {
        return false;
    }
    headBytesHeld = Read(headBytes, headBytesRead, readPosition);
    if (headBytesHeld < frameHeaderBytes) {
        return false;
    }
    if (!HasFrameSync(LoadFrameHeader(headBytes))) {
        if (!FindSync()) {
            return false;
        }
        headBytesHeld = Read(headBytes, headBytesRead, readPosition);
    }
    readPosition += frameHeaderBytes;
    const FrameHeader found = SplitFrameHeader(LoadFrameHeader(headBytes));
    if (!IsPlayable(found)) {
        return false;
    }
    header = found;
    FollowHeader();
    bitrate = BitrateKbps(header);
    sideInfoLength = SideInfoBytes(header);
    frameLength = FrameBytes(header);
    frameSamples = FrameSamples(header);
    msStereo = header.MsStereo();
    intensityStereo = header.IntensityStereo();
    return true;
}

void SndFileMP3::FollowHeader()
{
    channels = header.Channels();
    sampleFrequency = SampleRateHz(header);
}

bool SndFileMP3::FindSync()
{
    unsigned char chunk[largeSearchBytes];
    // Usually the next MPEG frame is near.
    int chunkBytes = smallSearchBytes;
    while (readPosition <= maxReadPosition) {
        const int held = Read(chunk, chunkBytes, readPosition);
        const int candidates = held - (frameHeaderBytes - 1);
        const int found = FindSyncAmong(chunk, candidates);
        if (found < candidates) {
            readPosition += found;
            return true;
        }
        if (held < chunkBytes) {
            readPosition += held;
            return false;
        }
        readPosition += candidates;
        chunkBytes = largeSearchBytes;
    }
    return false;
}

bool SndFileMP3::DecodeFrame(int sample)
{
    const FrameMark mark = {readPosition, sample};
    if (ReadFrame()) {
        frameMarks.Add(mark);
        pcmIndex = 0;
        return true;
    }
    // The header may have changed the length of an MPEG frame, and the buffer holds an old one.
    pcmIndex = frameSamples;
    return false;
}

int SndFileMP3::ReadSamples(unsigned char* buffer, int samples)
{
    if (samples <= 0 || fileType != FileMP3) {
        return 0;
    }
    const std::int64_t room = std::int64_t{samples} * channels;
    int delivered = 0;
    while (delivered < samples && currentSample <= maxInt - maxFrameSamples) {
        if (pcmIndex >= frameSamples && !DecodeNext(delivered > 0)) {
            break;
        }
        FollowHeader();
        if (room < channels) {
            delivered = DeliverMixed(buffer);
            break;
        }
        const int stride = channels * bytesPerSample;
        const int fitting = static_cast<int>(room / channels) - delivered;
        const int count = std::min({samples - delivered, frameSamples - pcmIndex, fitting});
        if (count <= 0) {
            break;
        }
        std::memcpy(buffer + std::ptrdiff_t{delivered} * stride, pcmBuffer + pcmIndex * stride,
            static_cast<std::size_t>(count) * stride);
        pcmIndex += count;
        delivered += count;
        currentSample += count;
    }
    return delivered;
}

// Returning 0 would mean the end of the data, and a stereo sample frame would overflow the caller's buffer.
int SndFileMP3::DeliverMixed(unsigned char* buffer)
{
    const unsigned char* const pcm = pcmBuffer + pcmIndex * maxChannels * bytesPerSample;
    if (bytesPerSample == 1) {
        buffer[0] = static_cast<unsigned char>((pcm[0] + pcm[1]) / 2);
    }
    else {
        StoreLittle16(buffer, (LoadLittleSigned16(pcm) + LoadLittleSigned16(pcm + 2)) / 2);
    }
    channels = 1;
    ++pcmIndex;
    ++currentSample;
    return 1;
}

// The format describes the delivered samples, so it must not change until the next call has samples of
// another.
bool SndFileMP3::DecodeNext(bool keepChannels)
{
    const int lastChannels = channels;
    const int lastFrequency = sampleFrequency;
    const bool decoded = DecodeFrame(currentSample);
    if (!keepChannels || (decoded && channels == lastChannels)) {
        return decoded;
    }
    channels = lastChannels;
    sampleFrequency = lastFrequency;
    return false;
}

int SndFileMP3::SkipFrame(int samples)
{
    const int headerPosition = readPosition;
    const int heldLength = frameLength;
    const int heldSideInfo = sideInfoLength;
    if (!ReadHeader()) {
        return 0;
    }
    pcmIndex = frameSamples;
    if (frameSamples > samples) {
        // Longer than the MPEG frames before it: do not skip it, decode it later.
        readPosition = headerPosition;
        frameLength = heldLength;
        sideInfoLength = heldSideInfo;
        return 0;
    }
    readPosition += frameLength;
    return frameSamples;
}

int SndFileMP3::SkipSamples(int samples)
{
    if (samples <= 0 || fileType != FileMP3) {
        return 0;
    }
    int left = std::min(samples, maxInt - maxFrameSamples - currentSample);
    const int wanted = left;
    while (left > 0) {
        if (pcmIndex < frameSamples) {
            FollowHeader();
            const int count = std::min(left, frameSamples - pcmIndex);
            pcmIndex += count;
            left -= count;
        }
        int skipped = frameSamples;
        while (skipped != 0 && frameSamples != 0 && left >= frameSamples) {
            skipped = SkipFrame(left);
            left -= skipped;
        }
        if (left > 0 && !DecodeFrame(currentSample + wanted - left)) {
            break;
        }
    }
    currentSample += std::max(wanted - left, 0);
    return std::max(wanted - left, 0);
}

void SndFileMP3::StepBack(int samples)
{
    if (samples <= 0 || fileType != FileMP3) {
        return;
    }
    const int target = std::max(currentSample - samples, 0);
    // At 32 kbit/s and above in stereo, the bit reservoir of 511 bytes at most reaches back no farther than
    // this; the filters reach back one MPEG frame. At lower bitrates a few MPEG frames can differ, as after a
    // skip.
    constexpr int warmUpFrames = 12;
    if (!DecodeTo(target, warmUpFrames)) {
        Rewind();
        SkipSamples(target);
    }
}

void SndFileMP3::SeekTo(int sample)
{
    // With 255 bytes of reservoir at 8 kbit/s and one channel, and two MPEG frames for the filters.
    constexpr int warmUpFrames = 32;
    if (fileType != FileMP3) {
        return;
    }
    Rewind();
    const int target = std::min(sample, maxInt - 2 * maxFrameSamples);
    if (target > 0 && WalkTo(target) && !DecodeTo(target, warmUpFrames)) {
        Rewind();
        SkipSamples(target);
    }
}

bool SndFileMP3::WalkTo(int target)
{
    while (true) {
        const FrameMark mark = {readPosition, currentSample};
        if (!ReadHeader()) {
            break;
        }
        frameMarks.Add(mark);
        if (currentSample + frameSamples > target) {
            return true;
        }
        currentSample += frameSamples;
        readPosition += frameLength;
    }
    frameLength = 0;
    pcmIndex = frameSamples;
    return false;
}

bool SndFileMP3::DecodeTo(int target, int warmUpFrames)
{
    const FrameMark* const mark = frameMarks.Find(target, warmUpFrames);
    if (mark == nullptr) {
        return false;
    }
    readPosition = mark->readPosition;
    currentSample = mark->sample;
    frameLength = 0;
    do {
        if (!DecodeFrame(currentSample)) {
            return false;
        }
        currentSample += frameSamples;
    } while (currentSample <= target);
    pcmIndex = frameSamples - (currentSample - target);
    currentSample = target;
    return true;
}

} // namespace Quon
