#include "tests/drivers/FormulaFile.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <thread>

namespace Quon
{

FormulaFile::FormulaFile(const Form& form, Formula newFormula)
    : formula(std::move(newFormula))
    , dataEnd(form.sampleFrames)
{
    SetFormat(form.bytesPerSample, form.rateHz, form.sampleFrames, form.channels);
    fileType = FileWav;
    soundLength = CalcLength(form.sampleFrames);
}

long FormulaFile::Quantise(double value) const
{
    const double steps = std::ldexp(1.0, 8 * bytesPerSample - 1);
    return std::lround(std::clamp(value * steps, -steps, steps - 1.0));
}

double FormulaFile::GetStored(int sampleFrame, int channel) const
{
    return std::ldexp(static_cast<double>(Quantise(formula(sampleFrame, channel))), 1 - 8 * bytesPerSample);
}

int FormulaFile::ReadSamples(unsigned char* buffer, int samples)
{
    Touch();
    Dawdle();
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
    {
        const std::scoped_lock lock(mutex);
        framesRead += given;
    }
    wasRead.notify_all();
    return given;
}

int FormulaFile::SkipSamples(int samples)
{
    Touch();
    const int skipped = std::clamp(soundSamples - currentSample, 0, std::max(samples, 0));
    currentSample += skipped;
    return skipped;
}

void FormulaFile::Rewind()
{
    Touch();
    currentSample = 0;
}

void FormulaFile::Touch()
{
    if (forbidden) {
        ++forbiddenTouches;
    }
}

void FormulaFile::Dawdle()
{
    if (readsPerSlowOne == 0 || --readsUntilSlowOne >= 0) {
        return;
    }
    readsUntilSlowOne = readsPerSlowOne - 1;
    const auto begin = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(slowness);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    slowestRead = std::max(slowestRead, taken);
}

bool FormulaFile::WaitUntilRead(long sampleFrames)
{
    std::unique_lock lock(mutex);
    return wasRead.wait_for(lock, std::chrono::minutes(2), [&] { return framesRead >= sampleFrames; });
}

FormulaFile::Formula Constant(double value)
{
    return [value](int, int) { return value; };
}

FormulaFile::Formula Sine(double hz, double amplitude, int rateHz)
{
    return [=](int sampleFrame, int) {
        return amplitude * std::sin(2.0 * std::numbers::pi * hz * sampleFrame / rateHz);
    };
}

FormulaFile::Formula Scatter()
{
    return [](int sampleFrame, int channel) {
        const auto mixed = static_cast<std::uint32_t>(sampleFrame * 2 + channel + 1) * 2654435761u;
        return static_cast<double>(mixed >> 8) / 8388608.0 - 1.0;
    };
}

std::unique_ptr<FormulaFile> MakeFile(const FormulaFile::Form& form, FormulaFile::Formula formula)
{
    return std::make_unique<FormulaFile>(form, std::move(formula));
}

} // namespace Quon
