// Advancing a sound along its files without a channel: the start samples, and emulation.

#include "harmonet/engine/Messages.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/instances/SndBaseRow.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Quon
{

namespace
{

constexpr double msPerSecond = 1000.0;

std::uint32_t CountSamples(const SndFile& file)
{
    return static_cast<std::uint32_t>(std::max(file.GetSoundSamples(), 0));
}

int CountSamplesLeft(const SndFile& file)
{
    return std::max(file.GetSoundSamples() - file.GetCurrentSample(), 0);
}

// Whether a skip in this file is pure arithmetic and always ends at the stated length. A wave file can be
// shorter than stated. An MPEG stream must be read, and its later output depends on the steps of the skip.
bool IsCountable(const SndFile& file)
{
    if (file.FileType() == SndFile::FileAdpcm) {
        return file.GetSoundSamples() > 0;
    }
    const std::int64_t bytes =
        std::int64_t{file.GetSoundSamples()} * file.GetBytesPerSample() * file.GetChannels();
    return file.FileType() == SndFile::FileWav && bytes > 0 &&
        bytes <= static_cast<std::int64_t>(file.Size());
}

} // namespace

// Replaces the current file by the next one of the queue, and closes it afterwards: a handler of its block
// can append to the file that the sound continues with.
void SndBase::StepToNextFile()
{
    SndFile* passed = sndFile;
    TakeFile(passed->GetNext());
    passed->ClearQueue();
    // Start samples are skipped after the channel has been created with the first file.
    if (sndChannel) {
        sndChannel->SetSndFile(sndFile);
    }
    NotificationScope notification(*this);
    CloseAndDelete(passed);
}

// The driver has advanced: deletes the files before `newFile`.
void SndBase::MoveOnTo(SndFile* newFile)
{
    SndFile* last = sndFile;
    while (last && last->GetNext() != newFile) {
        last = last->GetNext();
    }
    if (!last) {
        return;
    }
    sndChannel->Lock();
    last->ClearQueue();
    SndFile* passed = sndFile;
    TakeFile(newFile);
    sndChannel->Unlock();
    CloseAndDelete(passed);
}

void SndBase::SkipSamples(int samples)
{
    if (!sndFile) {
        return;
    }
    CatchUpFile();
    if (!IsLooping()) {
        SkipAlongQueue(samples);
    }
    else if (sndFile->GetSoundSamples() > 0) {
        // In 64 bits, since the sum can overflow 32 bits.
        sndFile->SeekTo(sndFile->WrapToLoop(std::int64_t{sndFile->GetCurrentSample()} + samples));
    }
}

// The start position of the sound in its files.
int SndBase::TakeStartSamples()
{
    std::int64_t samples = GetExtras().startSample;
    const std::uint32_t offsetMs = GetExtras().startOffsetMs;
    SetStartSample(0);
    SetExtra(&Extras::startOffsetMs, 0U);
    if (offsetMs > 0 && sndFile) {
        samples += std::int64_t{offsetMs} * sndFile->GetSampleFrequency() / static_cast<int>(msPerSecond);
    }
    return static_cast<int>(std::min<std::int64_t>(samples, std::numeric_limits<int>::max()));
}

void SndBase::SetLoopRegion(int start, int end)
{
    SetExtra(&Extras::loopStart, start);
    SetExtra(&Extras::loopEnd, end);
    if (sndFile) {
        CatchUpFile();
        ApplyLoopRegion(*sndFile);
    }
}

void SndBase::ApplyLoopRegion(SndFile& file) const
{
    if (!file.SetLoopRegion(GetExtras().loopStart, GetExtras().loopEnd)) {
        Report(MessageLevel::Error, "sound file '", fileName, "' loops as a whole: of its ",
            file.GetSoundSamples(), " sample frames none are in the region from ", GetExtras().loopStart,
            " to ", GetExtras().loopEnd);
    }
}

void SndBase::SkipAlongQueue(int samples)
{
    while (true) {
        const int left = CountSamplesLeft(*sndFile);
        if (samples < left) {
            sndFile->SeekTo(sndFile->GetCurrentSample() + samples);
            return;
        }
        if (!sndFile->GetNext()) {
            sndFile->SkipSamples(left);
            return;
        }
        samples -= left;
        StepToNextFile();
    }
}

bool SndBase::SndUpdate(float seconds, const Vector3&, bool)
{
    if (!theKernel || !IsPlaying() || IsAudible() || !sndFile) {
        return true;
    }
    const UpdateStep step = theKernel->MakeStep(seconds);
    const SoundRow row = Row();
    StartCounting();
    const unsigned long left = row.CanCount(step) ? unknownLength : GetRemainLength();
    if (left != unknownLength && left < std::uint64_t{step.minEmulationMs} + step.ms) {
        hasRunOut = true;
        return false;
    }
    if (row.HasMark(RowCounted)) {
        const std::int32_t samples = row.CalcSamples(step);
        if (row.CountSamples(samples)) {
            return true;
        }
        if (IsLooping()) {
            CountLoop(samples);
            return true;
        }
        CatchUpFile();
    }
    hasRunOut = !AdvanceEmulated(CalcSamples(static_cast<std::uint32_t>(GetFrequency()), step.ms));
    return !hasRunOut;
}

// Starts counting for a virtual sound, if possible.
void SndBase::StartCounting()
{
    if (Row().HasMark(RowCounted) || !IsPlaying() || IsAudible() || !sndFile) {
        return;
    }
    const bool mayGoRound = IsLooping() && sndFile->GetNext();
    if (!IsCountable(*sndFile) || mayGoRound || HasAnyFlag(FlagFadeOut)) {
        return;
    }
    Row().CountedSamples() = IsLooping() ? sndFile->GetPassEnd() : sndFile->GetSoundSamples();
    Row().SamplesLeft() = std::max(Row().CountedSamples() - sndFile->GetCurrentSample(), 0);
    Row().SetMark(RowCounted, true);
    Row().SetMark(RowLoopsWhole, IsLooping() && !sndFile->HasLoopRegion());
    NoteRate();
}

void SndBase::NoteRate()
{
    Row().RateHz() = static_cast<std::uint32_t>(GetFrequency());
    Row().SetMark(RowOwnRate, Row().RateHz() != static_cast<std::uint32_t>(sndFile->GetSampleFrequency()));
}

// Moves the file to the sound's playback position.
void SndBase::CatchUpFile() const
{
    const SoundRow row = Row();
    if (!row.HasMark(RowCounted)) {
        return;
    }
    if (row.HasMark(RowRewound)) {
        sndFile->Rewind();
    }
    row.SetMark(RowCounted | RowRewound, false);
    sndFile->SkipSamples(row.CountedSamples() - row.SamplesLeft() - sndFile->GetCurrentSample());
}

// Advances around the loop, which has no end, by at least the rest of the pass.
void SndBase::CountLoop(std::int32_t samples)
{
    const SoundRow row = Row();
    // Same as for a file: a step of the whole length has no effect.
    if (row.HasMark(RowLoopsWhole)) {
        samples %= row.CountedSamples();
        if (!row.CountSamples(samples)) {
            const int beyond = samples - row.SamplesLeft();
            row.SamplesLeft() = beyond > 0 ? row.CountedSamples() - beyond : 0;
            row.SetMark(RowRewound, beyond > 0 || row.HasMark(RowRewound));
        }
        return;
    }
    samples -= row.SamplesLeft();
    row.SamplesLeft() = 0;
    if (samples == 0) {
        return;
    }
    row.CountedSamples() = sndFile->GetLoopEnd();
    const int passLength = row.CountedSamples() - sndFile->GetLoopStart();
    const int inPass = (samples - 1) % passLength + 1;
    row.SamplesLeft() = passLength - inPass;
    row.SetMark(RowRewound, true);
}

// Milliseconds left of the current file, as the file would report them.
std::uint32_t SndBase::CalcFileRemain() const
{
    const SoundRow row = Row();
    if (!row.HasMark(RowCounted)) {
        return static_cast<std::uint32_t>(sndFile->GetRemainLength());
    }
    if (sndFile->GetSampleFrequency() <= 0) {
        return 0;
    }
    const double samplesLeft =
        static_cast<double>(row.SamplesLeft()) + sndFile->GetSoundSamples() - row.CountedSamples();
    const double seconds = samplesLeft / sndFile->GetSampleFrequency();
    return static_cast<std::uint32_t>(std::min(seconds * msPerSecond, 4294967295.0));
}

// Returns false when the sound has reached its end. A sound without any samples in all its files ends here
// too.
bool SndBase::AdvanceEmulated(std::uint32_t samples)
{
    std::uint32_t total = 0;
    for (const SndFile* file = sndFile; file; file = file->GetNext()) {
        total += CountSamples(*file);
    }
    if (total == 0) {
        return false;
    }
    const bool isRegion = IsLooping() && sndFile->HasLoopRegion();
    if (isRegion) {
        return AdvanceInRegion(samples);
    }
    const int rest = static_cast<int>(samples < total ? samples : samples % total);
    return IsLooping() ? AdvanceLooping(rest) : AdvanceAlongQueue(rest);
}

bool SndBase::AdvanceLooping(int samples)
{
    const int skipped = sndFile->SkipSamples(samples);
    if (skipped == samples) {
        return true;
    }
    sndFile->Rewind();
    return sndFile->SkipSamples(samples - skipped) == samples - skipped;
}

// Data that end before the region end the pass.
bool SndBase::AdvanceInRegion(std::uint32_t samples)
{
    const std::int64_t position = std::int64_t{sndFile->GetCurrentSample()} + samples;
    const int target = sndFile->WrapToLoop(position);
    if (target == position) {
        sndFile->SkipSamples(static_cast<int>(samples));
    }
    else {
        sndFile->SeekTo(target);
    }
    if (sndFile->GetCurrentSample() != target) {
        sndFile->RewindLoop();
        return sndFile->GetCurrentSample() == sndFile->GetLoopStart();
    }
    return true;
}

bool SndBase::AdvanceAlongQueue(int samples)
{
    samples -= sndFile->SkipSamples(samples);
    if (samples == 0) {
        return true;
    }
    while (sndFile->GetNext()) {
        StepToNextFile();
        if (samples == 0) {
            return true;
        }
        // A file that is skipped completely is not moved; the next step closes it.
        const int inFile = sndFile->GetSoundSamples();
        const bool endsHere = samples < inFile;
        samples -= endsHere ? sndFile->SkipSamples(samples) : inFile;
        if (endsHere && samples == 0) {
            return true;
        }
    }
    return false;
}

} // namespace Quon
