#include "harmonet/files/mpeg/DecoderKernels.h"

#include <bit>

namespace Quon
{

namespace
{

constexpr bool isLittleEndian = std::endian::native == std::endian::little;

// clang-format off: the later ones need the first.
#include "harmonet/files/mpeg/kernels/FourLanes.inl"
#include "harmonet/files/mpeg/kernels/HybridKernel.inl"
#include "harmonet/files/mpeg/kernels/PcmKernel.inl"
#include "harmonet/files/mpeg/kernels/SpectrumKernel.inl"
#include "harmonet/files/mpeg/kernels/SynthesisKernel.inl"
// clang-format on

constexpr DecoderKernels kernels = {"baseline", DecodeLines, ScaleBands, MidSide, AliasReduction,
    LongTransform, ShortTransform, FlushOverlap, laneCount, Synthesis, StorePcm16};

} // namespace

const DecoderKernels& BaselineKernels()
{
    return kernels;
}

} // namespace Quon
