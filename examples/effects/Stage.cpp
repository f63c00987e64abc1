#include "examples/effects/Stage.h"

#include "harmonet/engine/TaskList.h"

#include <bit>
#include <fstream>
#include <stdexcept>
#include <string>

namespace EffectsExample
{

static_assert(std::endian::native == std::endian::little, "samples are read without byte swapping");

Stage::Stage(std::filesystem::path newFile)
    : file(std::move(newFile))
{
    Quon::Options& options = *os.GetOptions();
    options.Set("Sound", "HarmonetOpenAL");
    options.Set("OpenALRender", file.string().c_str());
    options.Set("MaxSounds", std::to_string(maxSounds).c_str());
    options.Set("SoundFrequency", std::to_string(rateHz).c_str());
    if (!system.Init(&os, false)) {
        throw std::runtime_error("the sound system does not start, or cannot write " + file.string());
    }
    listener.Activate();
}

int Stage::Add(const Pcm& pcm, const Quon::Vector3& position)
{
    Quon::WaveFormatEx format{};
    format.formatTag = Quon::waveTagPcm;
    format.channels = 1;
    format.samplesPerSecond = rateHz;
    format.bitsPerSample = 16;
    // The library only reads it, although the signature is not const.
    void* const data = const_cast<std::int16_t*>(pcm.data());
    const int id = sounds.New3DSound(data, pcm.size() * sizeof(std::int16_t), &format);
    // A sound from memory starts with a cone of width 0.
    sounds.SetSoundCone(id, 360.0F, 360.0F, 1.0F);
    sounds.SetSoundMinMaxDistance(id, 1.0F, 100.0F, false);
    sounds.SetSoundPosition(id, position);
    return id;
}

void Stage::Start(int id, bool looping)
{
    const int flags = Quon::Sound::StartNowOrCompete | (looping ? Quon::Sound::StartLooping : 0);
    if (!sounds.StartSound(id, flags)) {
        throw std::runtime_error("a sound does not start");
    }
}

void Stage::Run(long ms)
{
    constexpr long stepMs = 50;
    constexpr float stepSeconds = 0.05F;
    for (; ms > 0; ms -= stepMs) {
        Quon::TaskList::Get().Update(stepSeconds);
    }
    if (Quon::SoundSystem::HasLostOutput()) {
        throw std::runtime_error(file.string() + " is cut off, the disk is full");
    }
}

Heard Stage::Read() const
{
    constexpr std::size_t headBytes = 44;
    std::ifstream in(file, std::ios::binary);
    in.ignore(headBytes);
    Heard heard;
    std::int16_t sides[2];
    while (in.read(reinterpret_cast<char*>(sides), sizeof sides)) {
        heard.left.push_back(sides[0] / 32768.0);
        heard.right.push_back(sides[1] / 32768.0);
    }
    return heard;
}

} // namespace EffectsExample
