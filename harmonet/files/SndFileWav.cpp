#include "harmonet/files/SndFileWav.h"

#include "harmonet/engine/File.h"
#include "harmonet/files/RiffWalk.h"
#include "harmonet/files/SndFileHandle.h"

#include <algorithm>
#include <limits>

namespace Quon
{

bool SndFileWav::OpenMemory(void* newData, unsigned long newSize, WaveFormatEx* format)
{
    CloseFile(0, nullptr);
    if (format == nullptr || (newData == nullptr && newSize > 0) || newSize > maxDataBytes ||
        !TakeFormat(*format)) {
        return false;
    }
    fileType = FileWav;
    size = static_cast<std::uint32_t>(newSize);
    data = static_cast<unsigned char*>(newData);
    userMemory = true;
    soundSamples = ClampSamples(size / static_cast<std::uint32_t>(BytesPerFrame()));
    soundLength = CalcLength(soundSamples);
    currentSample = 0;
    return true;
}

bool SndFileWav::Open(SndNode* newNode)
{
    SndFile::Open(newNode);
    if (fileType != FileWav || BytesPerFrame() <= 0 || sampleFrequency <= 0) {
        Abandon();
        return false;
    }
    currentSample = 0;
    soundLength = CalcLength(soundSamples);
    return true;
}

bool SndFileWav::OpenHandle(SndFileHandle* newHandle)
{
    if (!TakeHandle(newHandle)) {
        return false;
    }
    if (!ParseWave()) {
        Abandon();
        return false;
    }
    currentSample = 0;
    return true;
}

bool SndFileWav::ParseWave()
{
    const WaveData found = FindWaveData(*handle, [this](RiffWalk& walk) {
        return walk.GetSize() >= RiffWalk::minFormatBytes && walk.GetSize() <= RiffWalk::maxFormatBytes &&
            TakeFormat(walk.ReadFormat());
    });
    if (!found.IsWhole()) {
        return false;
    }
    fileType = FileWav;
    dataOffset = static_cast<std::uint32_t>(found.offset);
    size = found.bytes;
    soundSamples = ClampSamples(found.LimitSamples(size / static_cast<std::uint32_t>(BytesPerFrame())));
    soundLength = CalcLength(soundSamples);
    return true;
}

bool SndFileWav::TakeFormat(const WaveFormatEx& format)
{
    constexpr auto maxRateHz = static_cast<std::uint32_t>(std::numeric_limits<int>::max());
    if (format.formatTag != waveTagPcm || format.channels == 0 || format.bitsPerSample < 8 ||
        format.samplesPerSecond == 0 || format.samplesPerSecond > maxRateHz) {
        return false;
    }
    bytesPerSample = format.bitsPerSample / 8;
    sampleFrequency = static_cast<int>(format.samplesPerSecond);
    channels = format.channels;
    return true;
}

void* SndFileWav::CreateNodeInfo()
{
    return nullptr;
}

int SndFileWav::ReadSamples(unsigned char* buffer, int samples)
{
    const int frameBytes = BytesPerFrame();
    if (fileType != FileWav || samples <= 0) {
        return 0;
    }
    const std::uint64_t position = static_cast<std::uint64_t>(frameBytes) * currentSample;
    if (position > maxDataBytes) {
        return 0;
    }
    const int wanted = std::min({samples, std::numeric_limits<int>::max() / frameBytes,
        std::numeric_limits<int>::max() - currentSample});
    const int got = Read(buffer, frameBytes * wanted, static_cast<int>(position)) / frameBytes;
    if (got > 0) {
        currentSample += got;
    }
    return got;
}

int SndFileWav::SkipSamples(int samples)
{
    if (fileType != FileWav) {
        return 0;
    }
    // Usually all is available, and no division is needed: updates call this for virtual sounds.
    const auto bytes = static_cast<std::int64_t>(size);
    const bool isAllThere = std::int64_t{soundSamples} * BytesPerFrame() <= bytes;
    const std::int64_t end = isAllThere ? soundSamples : bytes / BytesPerFrame();
    const int skipped = static_cast<int>(
        std::clamp<std::int64_t>(samples, 0, std::max<std::int64_t>(end - currentSample, 0)));
    currentSample += skipped;
    return skipped;
}

void SndFileWav::Rewind()
{
    currentSample = 0;
}

unsigned long SndFileWav::GetRemainLength()
{
    return CalcRemainLength(FileWav);
}

unsigned long SndFileWav::GetCurrentLength()
{
    return CalcCurrentLength(FileWav);
}

} // namespace Quon
