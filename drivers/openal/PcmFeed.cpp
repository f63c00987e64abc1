#include "drivers/openal/PcmFeed.h"

#include "drivers/common/DriverChannel.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/output/SndChannel.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

constexpr double softeningMs = 5.0;
constexpr int rateGlideMs = 10;
/// The Doppler effect changes in each update, whose interval has this length with game frames at 60 Hz.
constexpr int pitchGlideMs = 50;
constexpr int minRead = 64;

/// Expands one channel at the beginning of `pcm` to two equal ones.
void Spread(std::span<float> pcm)
{
    for (std::size_t i = pcm.size() / 2; i-- > 0;) {
        pcm[2 * i] = pcm[2 * i + 1] = pcm[i];
    }
}

} // namespace

double Playback::GetPlayedHz(int ownHz) const
{
    const double rateHz = hz != 0 ? static_cast<double>(hz) : ownHz;
    return pitch == 1.0F
        ? rateHz
        : std::clamp<double>(rateHz * double{pitch}, minRateHz, std::max<double>(maxRateHz, rateHz));
}

void PcmFeed::Start(const Sound& newSound, const SndFile& file, const SndFXList& effectList)
{
    sound = newSound;
    if (!RateEngine::IsAvailable()) {
        sound.grade = RateGrade::Fast;
    }
    fadeIn.Cancel();
    softening.Cancel();
    lowPass.Start();
    pitch = 1.0F;
    silence = blockSilence = 0;
    reader.Start(sound.outChannels, sound.isLooping, file, effectList);
    converter.Start(reader.GetWidth(), sound.outputHz, sound.grade);
    block.reserve(2 * maxBlockFrames);
}

void PcmFeed::Finish()
{
    reader.Finish();
    converter.Finish();
}

void PcmFeed::SoftenNext()
{
    softening.Start(softeningMs);
}

void PcmFeed::Begin(SndChannel& channel)
{
    reader.ReadTo(channel, 1);
    if (reader.BeganInside()) {
        softening.Start(sound.returnFadeMs);
    }
}

int PcmFeed::Fill(SndChannel& channel, int wanted, const Playback& playback)
{
    return Make(&channel, wanted, playback);
}

int PcmFeed::FillFromHeld(int wanted, const Playback& playback)
{
    return Make(nullptr, wanted, playback);
}

void PcmFeed::ReadAhead(SndChannel& channel, std::int64_t sampleFrames)
{
    reader.ReadTo(channel, static_cast<std::int64_t>(converter.GetPosition()) + sampleFrames);
}

int PcmFeed::Make(SndChannel* channel, int wanted, const Playback& playback)
{
    wanted = std::min(wanted, maxBlockFrames);
    block.resize(static_cast<std::size_t>(wanted) * sound.outChannels);
    blockSilence = std::min(silence, wanted);
    silence -= blockSilence;
    std::ranges::fill(GetPlace(0, blockSilence), 0.0F);
    const double playedHz = playback.GetPlayedHz(reader.GetRateHz());
    converter.SetRate(playedHz, playback.pitch != pitch ? pitchGlideMs : rateGlideMs);
    pitch = playback.pitch;
    blockBegin = converter.GetPosition();
    int filled = blockSilence;
    bool isWhole = false;
    while (filled < wanted) {
        const int given = Convert(isWhole, filled, wanted);
        filled += given;
        if (filled == wanted || isWhole || !channel) {
            break;
        }
        isWhole = !ReadMore(*channel, wanted - filled, playedHz);
    }
    reader.DropBefore(converter.GetOldestNeeded());
    block.resize(static_cast<std::size_t>(filled) * sound.outChannels);
    const std::span<float> sounding = GetPlace(blockSilence, filled);
    const double heardHz = IsConverting() ? sound.outputHz : playedHz;
    lowPass.SetGain(playback.lowPass);
    lowPass.Apply(sounding, sound.outChannels, heardHz);
    softening.Apply(sounding, sound.outChannels, heardHz);
    fadeIn.Apply(sounding, sound.outChannels, heardHz);
    return filled;
}

// Returns false if neither data nor tail are left.
bool PcmFeed::ReadMore(SndChannel& channel, int missing, double playedHz)
{
    const double ratio = IsConverting() ? playedHz / sound.outputHz : 1.0;
    const std::int64_t before = reader.GetStream().GetEnd();
    const std::int64_t end = before + std::max(static_cast<int>(std::ceil(missing * ratio)), minRead);
    if (!reader.ReadTo(channel, end)) {
        reader.ReadTailTo(end);
    }
    return reader.GetStream().GetEnd() > before;
}

int PcmFeed::Convert(bool isWhole, int begin, int end)
{
    const std::span<float> place = GetPlace(begin, end);
    const auto sampleFrames = static_cast<std::size_t>(end - begin);
    const auto width = static_cast<std::size_t>(reader.GetWidth());
    const int given = converter.Convert(reader.GetStream(), isWhole, place.first(sampleFrames * width));
    if (reader.GetWidth() < sound.outChannels) {
        Spread(GetPlace(begin, begin + given));
    }
    return given;
}

std::span<float> PcmFeed::GetPlace(int begin, int end)
{
    const auto width = static_cast<std::size_t>(sound.outChannels);
    return std::span(block).subspan(
        static_cast<std::size_t>(begin) * width, static_cast<std::size_t>(end - begin) * width);
}

} // namespace Quon
