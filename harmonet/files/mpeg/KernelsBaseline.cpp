#include "harmonet/engine/Lanes.h"
#include "harmonet/files/mpeg/DecoderKernels.h"

#include <bit>
#include <cstring>

namespace Quon
{

namespace
{

constexpr bool isLittleEndian = std::endian::native == std::endian::little;
constexpr const char* kernelsName = hasVectorTypes ? "vectors of four" : "plain";
using Lanes = FourFloats;
using IntLanes = FourInts;

// The second header depends on the first. clang-format off
#include "harmonet/files/mpeg/kernels/FourLanes.inl"
#include "harmonet/files/mpeg/kernels/Kernels.inl"
// clang-format on

} // namespace

const DecoderKernels& BaselineKernels()
{
    return kernels;
}

} // namespace Quon
