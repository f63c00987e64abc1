#include "bench/kernel/PeerCrowd.h"

#if defined(HARMONET_BENCH_SOLOUD)
#include "bench/kernel/CrowdPlan.h"

#include <soloud.h>
#include <soloud_wav.h>
#include <vector>
#endif

namespace Bench
{

#if defined(HARMONET_BENCH_SOLOUD)

struct PeerCrowd::Voices
{
    explicit Voices(int count)
        : plan(count)
    {
        constexpr unsigned int channels = 64;
        constexpr int fileCount = 200;
        constexpr int rateHz = 8000;
        engine.init(SoLoud::Soloud::CLIP_ROUNDOFF, SoLoud::Soloud::NULLDRIVER);
        engine.setMaxActiveVoiceCount(channels);
        std::vector<float> pcm(2 * rateHz, 0.1F);
        for (int i = 0; i < fileCount; ++i) {
            files.push_back(std::make_unique<SoLoud::Wav>());
            SoLoud::Wav& file = *files.back();
            file.loadRawWave(pcm.data(), static_cast<unsigned int>(pcm.size()), rateHz, 1, true);
            file.setLooping(true);
            file.set3dMinMaxDistance(CrowdPlan::minDistance, CrowdPlan::maxDistance);
            file.set3dAttenuation(SoLoud::AudioSource::INVERSE_DISTANCE, 1.0F);
        }
        for (int i = 0; i < count; ++i) {
            const Quon::Vector3& place = plan.GetPlace(i).position;
            handles.push_back(
                engine.play3d(*files[static_cast<std::size_t>(i % fileCount)], place.x, place.y, place.z));
        }
    }
    ~Voices() { engine.deinit(); }

    CrowdPlan plan;
    SoLoud::Soloud engine;
    std::vector<std::unique_ptr<SoLoud::Wav>> files;
    std::vector<SoLoud::handle> handles;
    float listenerX = 0.0F;
};

bool PeerCrowd::IsAvailable()
{
    return true;
}

PeerCrowd::PeerCrowd(int count)
    : voices(std::make_unique<Voices>(count))
{
}

void PeerCrowd::Move()
{
    for (std::size_t i = 0; i < voices->handles.size(); i += 2) {
        const Quon::Vector3 place = voices->plan.AnyPosition();
        voices->engine.set3dSourcePosition(voices->handles[i], place.x, place.y, place.z);
    }
    voices->engine.set3dListenerPosition(voices->listenerX += 0.1F, 0.0F, 0.0F);
}

void PeerCrowd::Update()
{
    voices->engine.update3dAudio();
    voices->engine.lockAudioMutex_internal();
    voices->engine.calcActiveVoices_internal();
    voices->engine.unlockAudioMutex_internal();
}

#else

struct PeerCrowd::Voices
{
};

bool PeerCrowd::IsAvailable()
{
    return false;
}

PeerCrowd::PeerCrowd(int) {}

void PeerCrowd::Move() {}

void PeerCrowd::Update() {}

#endif

PeerCrowd::~PeerCrowd() = default;

} // namespace Bench
