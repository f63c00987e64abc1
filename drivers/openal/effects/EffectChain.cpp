#include "drivers/openal/effects/EffectChain.h"

#include "drivers/openal/effects/CompressorEffect.h"
#include "drivers/openal/effects/DistortionEffect.h"
#include "drivers/openal/effects/EchoEffect.h"
#include "drivers/openal/effects/GargleEffect.h"
#include "drivers/openal/effects/ParamEqEffect.h"
#include "drivers/openal/effects/SweptEffect.h"
#include "drivers/openal/effects/Units.h"
#include "drivers/openal/effects/WavesReverbEffect.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Quon
{

namespace
{

constexpr float quietLevel = 0.001F; ///< 60 dB below full scale.
/// The time that even an effect without a delay must stay quiet, since the output of its filters crosses 0.
constexpr double shortestQuietMs = 20.0;

template<class MadeEffect, class Record>
std::unique_ptr<Effect> Make(const SndFXDesc& desc, const PcmLayout& layout)
{
    if (desc.size < sizeof(Record)) {
        return nullptr;
    }
    Record record;
    std::memcpy(&record, desc.GetRecord(), sizeof record);
    return std::make_unique<MadeEffect>(record, layout);
}

/// Returns null for anything but an insert effect.
std::unique_ptr<Effect> MakeEffect(const SndFXDesc& desc, const PcmLayout& layout)
{
    switch (desc.effect) {
    case SndFXChorus:
        return Make<ChorusEffect, FXChorus>(desc, layout);
    case SndFXFlanger:
        return Make<FlangerEffect, FXFlanger>(desc, layout);
    case SndFXEcho:
        return Make<EchoEffect, FXEcho>(desc, layout);
    case SndFXDistortion:
        return Make<DistortionEffect, FXDistortion>(desc, layout);
    case SndFXCompressor:
        return Make<CompressorEffect, FXCompressor>(desc, layout);
    case SndFXParamEq:
        return Make<ParamEqEffect, FXParamEq>(desc, layout);
    case SndFXGargle:
        return Make<GargleEffect, FXGargle>(desc, layout);
    case SndFXWavesReverb:
        return Make<WavesReverbEffect, FXWavesReverb>(desc, layout);
    default:
        return nullptr;
    }
}

} // namespace

EffectChain::~EffectChain()
{
    records.Clear();
}

void EffectChain::Build(const SndFXList& list, const PcmLayout& newLayout)
{
    Clear();
    records = list.Duplicate();
    layout = newLayout;
    MakeEffects();
}

void EffectChain::SetRate(int rateHz)
{
    if (layout.rateHz != rateHz) {
        layout.rateHz = rateHz;
        MakeEffects();
    }
}

void EffectChain::Clear()
{
    records.Clear();
    effects.clear();
}

void EffectChain::MakeEffects()
{
    effects.clear();
    tailFrames = quietFrames = 0;
    const unsigned char* place = records.GetEffectsArr();
    for (unsigned long left = records.GetNumEffects(); left > 0; --left) {
        const auto* desc = reinterpret_cast<const SndFXDesc*>(place);
        if (auto effect = MakeEffect(*desc, layout)) {
            effects.push_back(std::move(effect));
        }
        place += sizeof(SndFXDesc) + desc->size;
    }
}

void EffectChain::Process(std::span<float> pcm)
{
    tailFrames = quietFrames = 0;
    Run(pcm);
}

void EffectChain::Run(std::span<float> pcm)
{
    for (const auto& effect : effects) {
        effect->Process(pcm);
    }
}

std::size_t EffectChain::ProcessTail(std::span<float> pcm)
{
    if (IsEmpty()) {
        return 0;
    }
    std::fill(pcm.begin(), pcm.end(), 0.0F);
    Run(pcm);
    return CountTail(pcm);
}

std::size_t EffectChain::CountTail(std::span<const float> pcm)
{
    const auto channels = static_cast<std::size_t>(layout.channels);
    const std::size_t longest = std::min(static_cast<std::size_t>(ToSampleFrames(maxTailMs, layout.rateHz)),
        tailFrames + pcm.size() / channels);
    const std::size_t quietNeeded = GetQuietNeeded();
    const std::size_t before = tailFrames;
    for (; tailFrames < longest && quietFrames < quietNeeded; ++tailFrames) {
        const auto frame = pcm.subspan((tailFrames - before) * channels, channels);
        const bool isLoud = std::any_of(
            frame.begin(), frame.end(), [](float sample) { return std::fabs(sample) >= quietLevel; });
        quietFrames = isLoud ? 0 : quietFrames + 1;
    }
    return tailFrames - before;
}

std::size_t EffectChain::GetQuietNeeded() const
{
    auto needed = static_cast<std::size_t>(ToSampleFrames(shortestQuietMs, layout.rateHz));
    for (const auto& effect : effects) {
        needed += static_cast<std::size_t>(effect->GetReach());
    }
    return needed;
}

} // namespace Quon
