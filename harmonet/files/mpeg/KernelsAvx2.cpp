// Compiled with AVX2, FMA and BMI2. All definitions must have internal linkage, and inline functions of
// headers must not be used: the linker could pick this copy of such a function for processors that cannot run
// it.

#include "harmonet/files/mpeg/KernelsAvx2.h"

#include "harmonet/engine/Lanes.h"
#include "harmonet/files/mpeg/DecoderKernels.h"

#include <cstring>
#include <immintrin.h>

namespace Quon
{

namespace
{

constexpr bool isLittleEndian = true;
constexpr const char* kernelsName = "avx2";

// The second header depends on the first. clang-format off
#include "harmonet/files/mpeg/kernels/EightLanes.inl"
#include "harmonet/files/mpeg/kernels/Kernels.inl"
// clang-format on

} // namespace

const DecoderKernels compiledAvx2Kernels = kernels;

} // namespace Quon
