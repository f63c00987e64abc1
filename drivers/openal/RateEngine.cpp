#include "drivers/openal/RateEngine.h"

#include <algorithm>

#ifdef HARMONET_HAS_SOXR
#include <soxr.h>
#endif

namespace Quon
{

RateEngine::~RateEngine() = default;

#ifdef HARMONET_HAS_SOXR

namespace
{

soxr_t Make(double inputHz, double outputHz, int width, unsigned long recipe, unsigned long flags)
{
    const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(recipe, flags);
    soxr_runtime_spec_t runtime = soxr_runtime_spec(1);
    // The smallest blocks: they minimise the input needed before the first output.
    runtime.log2_min_dft_size = 8;
    soxr_error_t error = nullptr;
    return soxr_create(inputHz, outputHz, static_cast<unsigned>(width), &error, &io, &quality, &runtime);
}

} // namespace

bool RateEngine::IsAvailable()
{
    return true;
}

void RateEngine::Deleter::operator()(soxr* handle) const
{
    soxr_delete(handle);
}

void RateEngine::StartFixed(
    std::int64_t newBegin, int newWidth, double inputHz, double outputHz, RateGrade grade)
{
    *this = RateEngine();
    width = static_cast<std::size_t>(newWidth);
    begin = fed = newBegin;
    position = static_cast<double>(newBegin);
    if (inputHz != outputHz) {
        ratio = inputHz / outputHz;
        resampler.reset(Make(inputHz, outputHz, newWidth, grade == RateGrade::Best ? SOXR_VHQ : SOXR_HQ, 0));
    }
}

void RateEngine::StartVariable(std::int64_t newBegin, int newWidth, double newRatio, double maxRatio)
{
    *this = RateEngine();
    width = static_cast<std::size_t>(newWidth);
    begin = fed = newBegin;
    position = static_cast<double>(newBegin);
    ratio = newRatio;
    largestRatio = maxRatio;
    isVariable = true;
    resampler.reset(Make(maxRatio, 1.0, newWidth, SOXR_HQ, SOXR_VR));
    if (resampler) {
        soxr_set_io_ratio(resampler.get(), newRatio, 0);
    }
}

void RateEngine::Glide(double newRatio, int outputFrames)
{
    if (!resampler) {
        return;
    }
    newRatio = std::min(newRatio, largestRatio);
    soxr_set_io_ratio(resampler.get(), newRatio, static_cast<std::size_t>(outputFrames));
    ratioStep = (newRatio - ratio) / outputFrames;
    glideLeft = outputFrames;
    glideEnd = newRatio;
}

int RateEngine::Resample(const PcmFifo& input, bool isWhole, std::span<float> out)
{
    const std::size_t wanted = out.size() / width;
    std::size_t filled = 0;
    while (filled < wanted && !isFlushed) {
        const std::span<const float> in = input.From(fed);
        if (in.empty() && !isWhole && !isEnding) {
            break;
        }
        // After the end has been signalled to libsoxr, further data are for the next engine.
        isEnding = isEnding || in.empty();
        std::size_t taken = 0;
        std::size_t given = 0;
        soxr_process(resampler.get(), isEnding ? nullptr : in.data(), isEnding ? 0 : in.size() / width,
            &taken, out.data() + filled * width, wanted - filled, &given);
        fed += static_cast<std::int64_t>(taken);
        filled += given;
        isFlushed = isEnding && given == 0;
    }
    Advance(static_cast<int>(filled));
    if (isFlushed) {
        position = static_cast<double>(fed);
    }
    return static_cast<int>(filled);
}

#else

bool RateEngine::IsAvailable()
{
    return false;
}

void RateEngine::Deleter::operator()(soxr*) const {}

void RateEngine::StartFixed(std::int64_t newBegin, int newWidth, double, double, RateGrade)
{
    *this = RateEngine();
    width = static_cast<std::size_t>(newWidth);
    begin = fed = newBegin;
    position = static_cast<double>(newBegin);
}

void RateEngine::StartVariable(std::int64_t newBegin, int newWidth, double, double)
{
    StartFixed(newBegin, newWidth, 1.0, 1.0, RateGrade::Fast);
}

void RateEngine::Glide(double, int) {}

int RateEngine::Resample(const PcmFifo& input, bool, std::span<float> out)
{
    return Copy(input, out);
}

#endif

int RateEngine::Convert(const PcmFifo& input, bool isWhole, std::span<float> out)
{
    return IsCopy() ? Copy(input, out) : Resample(input, isWhole, out);
}

int RateEngine::Copy(const PcmFifo& input, std::span<float> out)
{
    const std::span<const float> in = input.From(fed);
    const std::size_t count = std::min(in.size(), out.size());
    std::copy_n(in.data(), count, out.data());
    fed += static_cast<std::int64_t>(count / width);
    position = static_cast<double>(fed);
    return static_cast<int>(count / width);
}

// A fixed ratio is multiplied instead of accumulated, so that the position stays exact.
void RateEngine::Advance(int outputFrames)
{
    if (!isVariable) {
        made += outputFrames;
        position = static_cast<double>(begin) + static_cast<double>(made) * ratio;
        return;
    }
    const int gliding = std::min(outputFrames, glideLeft);
    position += gliding * (ratio + ratioStep * (gliding - 1) / 2.0);
    ratio += gliding * ratioStep;
    glideLeft -= gliding;
    if (gliding > 0 && glideLeft == 0) {
        ratio = glideEnd;
    }
    position += (outputFrames - gliding) * ratio;
}

} // namespace Quon
