#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/definitions/SndFXList.h"

namespace Quon
{

namespace
{

constexpr FXChorus defaultChorus = {50.0F, 10.0F, 25.0F, 1.1F, 1, 16.0F, 3};
constexpr FXFlanger defaultFlanger = {50.0F, 100.0F, -50.0F, 0.25F, 1, 2.0F, 2};
constexpr FXEcho defaultEcho = {50.0F, 50.0F, 500.0F, 500.0F, 0};
constexpr FXDistortion defaultDistortion = {-18.0F, 15.0F, 2400.0F, 2400.0F, 7350.0F};
constexpr FXCompressor defaultCompressor = {0.0F, 10.0F, 200.0F, -20.0F, 3.0F, 4.0F};
constexpr FXParamEq defaultParamEq = {7350.0F, 12.0F, 0.0F};
constexpr FXGargle defaultGargle = {20, 0};
constexpr FXWavesReverb defaultWavesReverb = {0.0F, 0.0F, 1000.0F, 0.001F};

template<class Record>
constexpr SndFXDefault MakeDefault(const Record& record)
{
    return {&record, sizeof record};
}

const SndFXDefault defaults[numResourceFX] = {
    MakeDefault(fxEnvReverbDefault),
    MakeDefault(defaultChorus),
    MakeDefault(defaultFlanger),
    MakeDefault(defaultEcho),
    MakeDefault(defaultDistortion),
    MakeDefault(defaultCompressor),
    MakeDefault(defaultParamEq),
    MakeDefault(defaultGargle),
    MakeDefault(defaultWavesReverb),
};

} // namespace

const SndFXDefault& GetFXDefault(SndFX effect)
{
    return defaults[effect];
}

} // namespace Quon
