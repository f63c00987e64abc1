#include "harmonet/files/mpeg/HybridStage.h"

#include <algorithm>

namespace Quon
{

namespace
{

/// The long subbands of a mixed block, with the normal window whatever the block type.
constexpr int mixedLongSubbands = 2;
constexpr int slotRow = subbandCount;

void CopyMixedSubbands(const float* from, float* to)
{
    for (int slot = 0; slot < slotsPerGranule; ++slot) {
        std::copy_n(from + slot * slotRow, mixedLongSubbands, to + slot * slotRow);
    }
}

/// One group of subbands by the block type alone.
void TransformGroup(const DecoderTables& tables, const DecoderKernels& kernels, int blockType,
    const float* xr, int subband, float* overlap, float* out)
{
    if (blockType == blockTypeShort) {
        kernels.shortTransform(tables.hybrid, xr, subband, overlap, out);
    }
    else {
        kernels.longTransform(tables.hybrid, blockType, xr, subband, overlap, out);
    }
}

/// The lowest group if its first two subbands have a different window: computed both ways.
void TransformMixedGroup(const DecoderTables& tables, const DecoderKernels& kernels, int blockType,
    const float* xr, float* overlap, float* out)
{
    float lowOverlap[slotsPerGranule * slotRow] = {};
    float lowOut[slotsPerGranule * slotRow];
    CopyMixedSubbands(overlap, lowOverlap);
    kernels.longTransform(tables.hybrid, 0, xr, 0, lowOverlap, lowOut);
    TransformGroup(tables, kernels, blockType, xr, 0, overlap, out);
    CopyMixedSubbands(lowOverlap, overlap);
    CopyMixedSubbands(lowOut, out);
}

} // namespace

void ReduceAlias(const DecoderTables& tables, const DecoderKernels& kernels, const GranuleInfo& info,
    int subbandLimit, float* xr)
{
    if (info.IsShort() && !info.IsMixed()) {
        return;
    }
    // Up to the boundary above the last transformed subband. The limit of a short block can be below its
    // highest lines, and the stereo stage copies those into the other channel.
    const int boundaries = info.IsMixed() ? 1 : subbandCount - 1;
    kernels.aliasReduction(tables.alias, xr, std::min(boundaries, subbandLimit + 2));
}

void TransformHybrid(const DecoderTables& tables, const DecoderKernels& kernels, const GranuleInfo& info,
    int subbandLimit, float* xr, float* overlap, float* out)
{
    // One subband more than those with content: alias reduction spreads into it.
    const int transformed = std::min(subbandLimit + 2, subbandCount);
    const int group = kernels.subbandGroup;
    const int groupsEnd = (transformed + group - 1) / group * group;
    std::fill(xr + transformed * linesPerSubband, xr + groupsEnd * linesPerSubband, 0.0F);

    int subband = 0;
    if (info.mixed_block_flag != 0) {
        TransformMixedGroup(tables, kernels, info.block_type, xr, overlap, out);
        subband = group;
    }
    for (; subband < groupsEnd; subband += group) {
        TransformGroup(tables, kernels, info.block_type, xr, subband, overlap, out);
    }
    for (; subband < subbandCount; subband += group) {
        kernels.flushOverlap(subband, overlap, out);
    }
}

} // namespace Quon
