#pragma once

#include "harmonet/files/SndFile.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace Quon
{

/// A sound whose samples come from a formula, and which knows who reads from it. The test owns it.
class FormulaFile final : public SndFile
{
public:
    /// From a sample frame and a channel to a value from -1 to 1.
    using Formula = std::function<double(int sampleFrame, int channel)>;

    struct Form
    {
        int sampleFrames = 0;
        int rateHz = 44100;
        int channels = 1;
        int bytesPerSample = 2;
    };

    FormulaFile(const Form& form, Formula newFormula);

    /// The value as it is stored: rounded to the integers of the form, and turned back.
    double GetStored(int sampleFrame, int channel) const;

    /// The data end before the sample frames that the form states.
    void BreakOffAt(int sampleFrame) { dataEnd = sampleFrame; }

    /// A read that would pass this sample frame ends in front of it, as at a change of form; the next goes
    /// on.
    void PauseAt(int sampleFrame) { pauseAt = sampleFrame; }

    /// What the form says of the rate turns out to be wrong at the first read.
    void TurnOutToHave(int newRateHz) { trueRateHz = newRateHz; }

    /// Each read of so many takes a while, as from a disk that has gone to sleep.
    void BeSlow(int newReadsPerSlowOne, std::chrono::milliseconds newSlowness)
    {
        readsPerSlowOne = newReadsPerSlowOne;
        slowness = newSlowness;
    }
    /// The longest that a read has really taken.
    std::chrono::duration<double> GetSlowestRead() const { return slowestRead; }

    /// From now on nobody may call any operation; GetForbiddenTouches() counts those who do.
    void Forbid() { forbidden = true; }
    int GetForbiddenTouches() const { return forbiddenTouches; }

    /// Sample frames that have been handed out.
    long GetFramesRead() const { return framesRead; }
    /// Waits until that many have been handed out, from any thread. False if it takes an age.
    bool WaitUntilRead(long sampleFrames);

    bool OpenMemory(void*, unsigned long, WaveFormatEx*) override { return false; }
    bool OpenHandle(SndFileHandle*) override { return false; }
    void* CreateNodeInfo() override { return nullptr; }
    int ReadSamples(unsigned char* buffer, int samples) override;
    int SkipSamples(int samples) override;
    void Rewind() override;
    unsigned long GetRemainLength() override { return CalcRemainLength(FileWav); }
    unsigned long GetCurrentLength() override { return CalcCurrentLength(FileWav); }

private:
    long Quantise(double value) const;
    void Touch();
    void Dawdle();

    const Formula formula;
    int dataEnd;
    int pauseAt = 0;
    int trueRateHz = 0;
    int readsPerSlowOne = 0; ///< 0: all are quick.
    int readsUntilSlowOne = 0;
    std::chrono::milliseconds slowness{};
    std::chrono::duration<double> slowestRead{};
    std::atomic<bool> forbidden = false;
    std::atomic<int> forbiddenTouches = 0;
    std::mutex mutex;
    std::condition_variable wasRead;
    std::atomic<long> framesRead = 0;
};

/// Shapes for sounds.
FormulaFile::Formula Constant(double value);
FormulaFile::Formula Sine(double hz, double amplitude, int rateHz);
/// Looks like noise, is different in each channel, and uses all of the range.
FormulaFile::Formula Scatter();

std::unique_ptr<FormulaFile> MakeFile(const FormulaFile::Form& form, FormulaFile::Formula formula);

} // namespace Quon
