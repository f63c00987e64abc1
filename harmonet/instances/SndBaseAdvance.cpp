// How a sound moves along its files without a channel: the start samples, and emulation.

#include "harmonet/files/SndFile.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"

#include <algorithm>

namespace Quon
{

namespace
{

constexpr double msPerSecond = 1000.0;

std::uint32_t CountSamples(const SndFile& file)
{
    return static_cast<std::uint32_t>(std::max(file.GetSoundSamples(), 0));
}

int CountSamplesLeft(SndFile& file)
{
    return std::max(file.GetSoundSamples() - file.GetCurrentSample(), 0);
}

} // namespace

// The next file of the queue takes the place of the current one, which is closed after that: a handler that
// hears of its block can append to the file that the sound goes on with.
void SndBase::StepToNextFile()
{
    SndFile* passed = sndFile;
    sndFile = passed->GetNext();
    passed->ClearQueue();
    // Start samples are skipped when the channel is there already, and has the first file.
    if (sndChannel)
        sndChannel->SetSndFile(sndFile);
    Telling telling(*this);
    CloseAndDelete(passed);
}

// The driver has moved on: what lies in front of `newFile` goes.
void SndBase::MoveOnTo(SndFile* newFile)
{
    SndFile* last = sndFile;
    while (last && last->GetNext() != newFile)
        last = last->GetNext();
    if (!last)
        return;
    sndChannel->Lock();
    last->ClearQueue();
    SndFile* passed = sndFile;
    sndFile = newFile;
    sndChannel->Unlock();
    CloseAndDelete(passed);
}

void SndBase::SkipSamples(int samples)
{
    if (!sndFile)
        return;
    if (IsLooping())
        SkipLooping(samples);
    else
        SkipAlongQueue(samples);
}

void SndBase::SkipLooping(int samples)
{
    const int total = sndFile->GetSoundSamples();
    if (total <= 0)
        return;
    const int current = sndFile->GetCurrentSample();
    if (samples >= total - current) {
        sndFile->Rewind();
        // In 64 bits, for the sum can pass 32.
        samples = static_cast<int>((static_cast<std::int64_t>(current) - total + samples) % total);
    }
    sndFile->SkipSamples(samples);
}

void SndBase::SkipAlongQueue(int samples)
{
    while (true) {
        const int left = CountSamplesLeft(*sndFile);
        if (samples < left) {
            sndFile->SkipSamples(samples);
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
    if (!theKernel || !IsPlaying() || IsAudible() || !sndFile)
        return true;
    const double exactMs = static_cast<double>(seconds) * msPerSecond;
    const std::uint32_t ms = exactMs > 0.0 ? static_cast<std::uint32_t>(std::min(exactMs, 4294967295.0)) : 0;
    const auto minimum = static_cast<std::uint64_t>(theKernel->GetOptions().minEmulationLength);
    const unsigned long left = GetRemainLength();
    if (left != unknownLength && left < minimum + ms)
        return false;
    return AdvanceEmulated(static_cast<std::uint32_t>(GetFrequency()) * ms / 1000U);
}

// False when the sound has run out. A sound without a single sample in all its files ends here too.
bool SndBase::AdvanceEmulated(std::uint32_t samples)
{
    std::uint32_t total = 0;
    for (const SndFile* file = sndFile; file; file = file->GetNext())
        total += CountSamples(*file);
    if (total == 0)
        return false;
    const int rest = static_cast<int>(samples < total ? samples : samples % total);
    return IsLooping() ? AdvanceLooping(rest) : AdvanceAlongQueue(rest);
}

bool SndBase::AdvanceLooping(int samples)
{
    const int skipped = sndFile->SkipSamples(samples);
    if (skipped == samples)
        return true;
    sndFile->Rewind();
    return sndFile->SkipSamples(samples - skipped) == samples - skipped;
}

bool SndBase::AdvanceAlongQueue(int samples)
{
    samples -= sndFile->SkipSamples(samples);
    if (samples == 0)
        return true;
    while (sndFile->GetNext()) {
        StepToNextFile();
        if (samples == 0)
            return true;
        // A file that is passed over as a whole is not moved; the next step closes it.
        const int inFile = sndFile->GetSoundSamples();
        const bool endsHere = samples < inFile;
        samples -= endsHere ? sndFile->SkipSamples(samples) : inFile;
        if (endsHere && samples == 0)
            return true;
    }
    return false;
}

} // namespace Quon
