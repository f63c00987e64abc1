#include "harmonet/files/mpeg/DecoderKernels.h"
#include "harmonet/files/mpeg/KernelsAvx2.h"

namespace Quon
{

#if defined(HARMONET_MPEG_AVX2)

const DecoderKernels* Avx2Kernels()
{
    const bool supported = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
        __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
    return supported ? &compiledAvx2Kernels : nullptr;
}

#else

const DecoderKernels* Avx2Kernels()
{
    return nullptr;
}

#endif

const DecoderKernels& SelectKernels()
{
    const DecoderKernels* avx2 = Avx2Kernels();
    return avx2 != nullptr ? *avx2 : BaselineKernels();
}

} // namespace Quon
