// The kernels on the vectors of the translation unit that includes this, inside its unnamed namespace.

#include "harmonet/files/mpeg/kernels/HybridKernel.inl"
#include "harmonet/files/mpeg/kernels/PcmKernel.inl"
#include "harmonet/files/mpeg/kernels/SpectrumKernel.inl"
#include "harmonet/files/mpeg/kernels/SynthesisKernel.inl"

constexpr DecoderKernels kernels = {kernelsName, DecodeLines, ScaleBands, MidSide, AliasReduction,
    LongTransform, ShortTransform, FlushOverlap, laneCount, Synthesis, StorePcm16};
