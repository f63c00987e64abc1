#pragma once

namespace Quon
{

struct DecoderKernels;

/// The kernels of KernelsAvx2.cpp, on x86-64 only. Use Avx2Kernels(), which checks the processor first.
extern const DecoderKernels compiledAvx2Kernels;

} // namespace Quon
