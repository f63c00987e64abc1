#include "drivers/null/NullChannel.h"

#include "harmonet/files/SndFile.h"

#include <algorithm>
#include <limits>

namespace Quon
{

namespace
{
constexpr std::uint64_t longStepSeconds = 10;
}

void NullChannel::Prepare(unsigned int flags, SndFile* file)
{
    const SyncLock lock(chanLock);
    SetSndFile(file);
    looping = flags & ChanLooping;
    reader.Start(looping);
    steps.Clear();
    clock.Reset();
    wantedHz = 0;
    fading = false;
    fadeLeftMs = 0;
    state = State::Ready;
}

void NullChannel::Play()
{
    if (state == State::Ready) {
        state = State::Playing;
    }
}

void NullChannel::Stop()
{
    if (state != State::Ready && state != State::Playing) {
        return;
    }
    const SyncLock lock(chanLock);
    SetSndFile(steps.GetOldestFile(GetSndFile()));
    steps.Clear();
    state = State::Free;
}

void NullChannel::FadeOut(int ms)
{
    fading = true;
    fadeLeftMs = static_cast<std::uint32_t>(std::max(ms, 0));
}

void NullChannel::SkipFade(int ms)
{
    fadeLeftMs -= std::min(fadeLeftMs, static_cast<std::uint32_t>(std::max(ms, 0)));
}

unsigned long NullChannel::GetRemainLength()
{
    const SyncLock lock(chanLock);
    const SndFile* const file = GetSndFile();
    // While a step is unreported, the library still asks about the old file, which has nothing left.
    if (state == State::Free || !file || !steps.IsEmpty()) {
        return 0;
    }
    // Data after the end of a loop region count as left, so that the position in the file can be computed
    // from it.
    const int afterLoop = looping ? file->GetSoundSamples() - file->GetPassEnd() : 0;
    return ToMilliseconds(reader.GetFramesLeft(*this) + afterLoop, file->GetSampleFrequency());
}

bool NullChannel::SetFrequency(unsigned long hz)
{
    if (!IsRateAccepted(hz)) {
        return false;
    }
    wantedHz = hz;
    return true;
}

unsigned long NullChannel::GetFrequency()
{
    if (wantedHz != 0) {
        return wantedHz;
    }
    const SyncLock lock(chanLock);
    const SndFile* const file = GetSndFile();
    return file ? static_cast<unsigned long>(std::max(file->GetSampleFrequency(), 0)) : 0;
}

void NullChannel::Advance(std::uint32_t elapsedMs, std::span<unsigned char> scratch)
{
    if (state != State::Playing) {
        return;
    }
    const SyncLock lock(chanLock);
    const std::uint32_t heardMs = fading ? std::min(elapsedMs, fadeLeftMs) : elapsedMs;
    fadeLeftMs -= fading ? heardMs : 0;
    const auto rateHz = static_cast<std::uint32_t>(GetFrequency());
    Pull(CutLongStep(clock.Advance(heardMs, rateHz), rateHz), scratch);
}

// After a long halt of the host, skip whole passes of a loop: they end at the same position.
std::uint64_t NullChannel::CutLongStep(std::uint64_t sampleFrames, std::uint32_t rateHz) const
{
    const SndFile* const file = GetSndFile();
    if (!looping || !file || sampleFrames <= longStepSeconds * rateHz) {
        return sampleFrames;
    }
    const int passLength = file->GetLoopEnd() - file->GetLoopStart();
    const auto toLoop =
        static_cast<std::uint64_t>(std::max(file->GetLoopStart() - file->GetCurrentSample(), 0));
    if (passLength <= 0 || sampleFrames < toLoop) {
        return sampleFrames;
    }
    return toLoop + (sampleFrames - toLoop) % static_cast<std::uint64_t>(passLength);
}

void NullChannel::Pull(std::uint64_t sampleFrames, std::span<unsigned char> scratch)
{
    // With nothing more to read, the last round advances from a file that has just reached its end.
    while (true) {
        const int wanted =
            static_cast<int>(std::min<std::uint64_t>(sampleFrames, std::numeric_limits<int>::max()));
        SndFile* const before = GetSndFile();
        int given = 0;
        switch (reader.Read(*this, scratch.data(), static_cast<int>(scratch.size()), wanted, given)) {
        case QueueReader::Result::Stepped:
            steps.Add({before, GetSndFile(), 0, 0});
            break;
        case QueueReader::Result::End:
            return;
        case QueueReader::Result::Data:
            if (wanted == 0) {
                return;
            }
            sampleFrames -= static_cast<std::uint64_t>(given);
        }
    }
}

bool NullChannel::TakeChange(SndFileChange& change)
{
    if (state != State::Playing || steps.IsEmpty()) {
        return false;
    }
    const FileStep& step = steps.GetOldest();
    change = {this, step.newFile, step.oldFile};
    steps.DropOldest();
    return true;
}

bool NullChannel::TakeEnd()
{
    if (state != State::Playing || !steps.IsEmpty()) {
        return false;
    }
    const SyncLock lock(chanLock);
    if (!reader.IsAtEnd(*this) && !(fading && fadeLeftMs == 0)) {
        return false;
    }
    state = State::Ending;
    return true;
}

void NullChannel::Release()
{
    state = State::Free;
}

} // namespace Quon
