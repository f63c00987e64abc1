// Compiled with AVX2, FMA and BMI2 switched on. Whatever is defined here must have internal linkage, and
// nothing may be used that a header defines inline: the linker could pick this copy of such a function for
// processors that cannot run it.

#include "harmonet/files/mpeg/KernelsAvx2.h"

#include "harmonet/files/mpeg/DecoderKernels.h"
#include <immintrin.h>

namespace Quon
{

namespace
{

constexpr bool isLittleEndian = true;

// clang-format off: the later ones need the first.
#include "harmonet/files/mpeg/kernels/EightLanes.inl"
#include "harmonet/files/mpeg/kernels/HybridKernel.inl"
#include "harmonet/files/mpeg/kernels/PcmKernel.inl"
#include "harmonet/files/mpeg/kernels/SpectrumKernel.inl"
#include "harmonet/files/mpeg/kernels/SynthesisKernel.inl"
// clang-format on

} // namespace

const DecoderKernels compiledAvx2Kernels = {"avx2", DecodeLines, ScaleBands, MidSide, AliasReduction,
    LongTransform, ShortTransform, FlushOverlap, laneCount, Synthesis, StorePcm16};

} // namespace Quon
