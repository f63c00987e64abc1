#pragma once

#include "harmonet/files/SndFile.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <numbers>
#include <thread>

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

    FormulaFile(const Form& form, Formula newFormula)
        : formula(std::move(newFormula))
        , dataEnd(form.sampleFrames)
    {
        SetFormat(form.bytesPerSample, form.rateHz, form.sampleFrames, form.channels);
        fileType = FileWav;
        soundLength = CalcLength(form.sampleFrames);
    }

    /// The value as it is stored: rounded to the integers of the form, and turned back.
    double GetStored(int sampleFrame, int channel) const
    {
        return std::ldexp(
            static_cast<double>(Quantise(formula(sampleFrame, channel))), 1 - 8 * bytesPerSample);
    }

    // Its properties, to be set before it plays.

    /// The data end before the sample frames that the form states.
    void BreakOffAt(int sampleFrame) { dataEnd = sampleFrame; }
    /// A read that would pass this sample frame ends before it, as at a change of format; the next continues.
    void PauseAt(int sampleFrame) { pauseAt = sampleFrame; }
    /// The first read finds another rate than the form states.
    void TurnOutToHave(int newRateHz) { trueRateHz = newRateHz; }
    /// One of so many reads is slow, as from a disk that was in standby.
    void BeSlow(int newReadsPerSlowOne, std::chrono::milliseconds newSlowness)
    {
        readsPerSlowOne = newReadsPerSlowOne;
        slowness = newSlowness;
    }

    /// From now on any call is forbidden; GetForbiddenTouches() counts such calls.
    void Forbid() { forbidden = true; }
    int GetForbiddenTouches() const { return forbiddenTouches; }

    /// Sample frames that have been handed out.
    long GetFramesRead() const { return framesRead; }
    /// Waits until that many have been handed out, from any thread. False if it takes too long.
    bool WaitUntilRead(long sampleFrames)
    {
        std::unique_lock lock(mutex);
        return wasRead.wait_for(lock, std::chrono::minutes(2), [&] { return framesRead >= sampleFrames; });
    }

    bool OpenMemory(void*, unsigned long, WaveFormatEx*) override { return false; }
    bool OpenHandle(SndFileHandle*) override { return false; }
    void* CreateNodeInfo() override { return nullptr; }
    int ReadSamples(unsigned char* buffer, int samples) override
    {
        forbiddenTouches += forbidden;
        if (readsPerSlowOne > 0 && reads++ % readsPerSlowOne == 0) {
            std::this_thread::sleep_for(slowness);
        }
        // Only then: the game's thread may ask for the rate meanwhile.
        if (trueRateHz > 0) {
            sampleFrequency = trueRateHz;
        }
        const int readEnd = currentSample < pauseAt ? std::min(pauseAt, dataEnd) : dataEnd;
        const int given = std::clamp(readEnd - currentSample, 0, samples);
        for (int i = 0; i < given; ++i) {
            for (int channel = 0; channel < channels; ++channel) {
                long bits = Quantise(formula(currentSample + i, channel)) + (bytesPerSample == 1 ? 128 : 0);
                for (int byte = 0; byte < bytesPerSample; ++byte, bits >>= 8) {
                    *buffer++ = static_cast<unsigned char>(bits);
                }
            }
        }
        currentSample += given;
        const std::scoped_lock lock(mutex);
        framesRead += given;
        wasRead.notify_all();
        return given;
    }
    int SkipSamples(int samples) override
    {
        forbiddenTouches += forbidden;
        const int skipped = std::clamp(soundSamples - currentSample, 0, std::max(samples, 0));
        currentSample += skipped;
        return skipped;
    }
    void Rewind() override
    {
        forbiddenTouches += forbidden;
        currentSample = 0;
    }
    unsigned long GetRemainLength() override { return CalcRemainLength(FileWav); }
    unsigned long GetCurrentLength() override { return CalcCurrentLength(FileWav); }

private:
    long Quantise(double value) const
    {
        const double steps = std::ldexp(1.0, 8 * bytesPerSample - 1);
        return std::lround(std::clamp(value * steps, -steps, steps - 1.0));
    }

    const Formula formula;
    int dataEnd;
    int pauseAt = 0;
    int trueRateHz = 0;
    int readsPerSlowOne = 0; ///< 0: all are quick.
    int reads = 0;
    std::chrono::milliseconds slowness{};
    std::atomic<bool> forbidden = false;
    std::atomic<int> forbiddenTouches = 0;
    std::mutex mutex;
    std::condition_variable wasRead;
    std::atomic<long> framesRead = 0;
};

inline std::unique_ptr<FormulaFile> MakeFile(const FormulaFile::Form& form, FormulaFile::Formula formula)
{
    return std::make_unique<FormulaFile>(form, std::move(formula));
}

// Shapes for sounds.

inline FormulaFile::Formula Constant(double value)
{
    return [value](int, int) { return value; };
}

inline FormulaFile::Formula Sine(double hz, double amplitude, int rateHz)
{
    return [=](int sampleFrame, int) {
        return amplitude * std::sin(2.0 * std::numbers::pi * hz * sampleFrame / rateHz);
    };
}

/// Noise-like, different in each channel, over the full range.
inline FormulaFile::Formula Scatter()
{
    return [](int sampleFrame, int channel) {
        const auto mixed = static_cast<std::uint32_t>(sampleFrame * 2 + channel + 1) * 2654435761U;
        return static_cast<double>(mixed >> 8) / 8388608.0 - 1.0;
    };
}

} // namespace Quon
