#pragma once

namespace Quon
{

struct DecoderKernels;

/// What KernelsAvx2.cpp holds: exists on x86-64 only. Use Avx2Kernels(), which asks the processor first.
extern const DecoderKernels compiledAvx2Kernels;

} // namespace Quon
