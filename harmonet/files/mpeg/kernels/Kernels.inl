// The kernels for the vectors of the including translation unit, within its unnamed namespace.

#include "harmonet/files/mpeg/kernels/HybridKernel.inl"
#include "harmonet/files/mpeg/kernels/PcmKernel.inl"
#include "harmonet/files/mpeg/kernels/SpectrumKernel.inl"
#include "harmonet/files/mpeg/kernels/SynthesisKernel.inl"

constexpr DecoderKernels kernels = {kernelsName, DecodeLines, ScaleBands, MidSide, AliasReduction,
    LongTransform, ShortTransform, FlushOverlap, laneCount, Synthesis, StorePcm16};
