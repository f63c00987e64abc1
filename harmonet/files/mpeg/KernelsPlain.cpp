#include "harmonet/engine/Lanes.h"
#include "harmonet/files/mpeg/DecoderKernels.h"

#include <bit>
#include <cstring>

namespace Quon
{

namespace
{

constexpr bool isLittleEndian = std::endian::native == std::endian::little;
constexpr const char* kernelsName = "plain";
using Lanes = PlainLanes<float, 4>;
using IntLanes = PlainLanes<int, 4>;

// The second header depends on the first. clang-format off
#include "harmonet/files/mpeg/kernels/FourLanes.inl"
#include "harmonet/files/mpeg/kernels/Kernels.inl"
// clang-format on

} // namespace

const DecoderKernels& PlainKernels()
{
    return kernels;
}

} // namespace Quon
