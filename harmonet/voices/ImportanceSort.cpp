#include "harmonet/voices/ImportanceSort.h"

#include "harmonet/voices/Growth.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Quon
{

namespace
{

using Item = ImportanceSort::Item;

constexpr int wordBits = 32;

constexpr std::uint32_t LowBits(int count)
{
    return static_cast<std::uint32_t>((std::uint64_t{1} << count) - 1);
}

std::uint32_t Bits(float distance)
{
    return std::bit_cast<std::uint32_t>(distance);
}

} // namespace

void ImportanceSort::TakeCodes(
    std::span<SoundBlock* const> newBlocks, const ImportanceRange& range, Order newOrder, float maxMultiplier)
{
    blocks = newBlocks;
    order = newOrder;
    highestPriority = range.highest;
    const auto priorities =
        static_cast<std::uint32_t>(range.highest) - static_cast<std::uint32_t>(range.lowest);
    // The leading bits that are equal in both ends of the range are equal in all values between.
    const float farthest = WeightDistance(std::bit_cast<float>(range.farthest), maxMultiplier);
    distanceBits = std::bit_width(static_cast<std::uint32_t>(range.nearest) ^ Bits(farthest));
    const int allBits = std::bit_width(priorities) + distanceBits;
    codeBits = std::min(allBits, wordBits);
    droppedBits = allBits - codeBits;
    ResizeTo(codes, blocks.size() * SoundBlock::numLanes);
    std::uint32_t* code = codes.data();
    for (const SoundBlock* block : blocks) {
        EncodeBlock(*block, code);
        code += SoundBlock::numLanes;
    }
}

HARMONET_VECTOR_CLONES void ImportanceSort::EncodeBlock(const SoundBlock& block, std::uint32_t* code) const
{
    const std::uint32_t mask = LowBits(distanceBits);
    const int dropped = droppedBits;
    const int keptBits = distanceBits - dropped;
    const auto highest = static_cast<std::uint32_t>(highestPriority);
    const bool isWeighted = order == ByWeightedDistance;
    for (std::uint32_t lane = 0, end = block.end; lane < end; ++lane) {
        const float weight = isWeighted ? block.multiplier[lane] : 1.0F;
        const std::uint32_t distance = Bits(WeightDistance(block.distSqr[lane], weight));
        const std::uint32_t lower = highest - static_cast<std::uint32_t>(block.priority[lane]);
        code[lane] = lower << keptBits | (distance & mask) >> dropped;
    }
}

void ImportanceSort::Sort(std::span<const std::span<const ListEntry>> lists, std::span<Item> items)
{
    Scatter(lists, items);
    if (ignoredBits + droppedBits > 0) {
        SortEqualDigits(items);
    }
}

// Stable sorts by the lower digit and then by the higher one.
void ImportanceSort::Scatter(std::span<const std::span<const ListEntry>> lists, std::span<Item> items)
{
    // Found by measurement: more values take longer to count, fewer leave more items to compare.
    const int digitBits = (10 + static_cast<int>(std::bit_width(items.size()))) / 2;
    const int usedBits = std::min(codeBits, 2 * digitBits);
    const int lowBits = (usedBits + 1) / 2;
    const int lowShift = ignoredBits = codeBits - usedBits;
    const int highShift = lowShift + lowBits;
    const std::size_t numValues = std::size_t{1} << lowBits;
    const auto lowMask = static_cast<std::uint32_t>(numValues - 1);
    scratch.resize(items.size());
    places.assign(2 * numValues, 0);
    std::uint32_t* const low = places.data();
    std::uint32_t* const high = low + numValues;
    const std::uint32_t flip = order == ByWeightedDistance ? LowBits(codeBits) : 0;
    const std::uint32_t* const code = codes.data();
    Item* next = items.data();
    for (const std::span<const ListEntry> list : lists) {
        for (const ListEntry& entry : list) {
            const Item item = *next++ = {code[entry.row] ^ flip, entry.row};
            ++low[item.code >> lowShift & lowMask];
            ++high[item.code >> highShift];
        }
    }
    std::uint32_t lowBegin = 0;
    std::uint32_t highBegin = 0;
    for (std::size_t value = 0; value < numValues; ++value) {
        lowBegin += std::exchange(low[value], lowBegin);
        highBegin += std::exchange(high[value], highBegin);
    }
    Item* const target = scratch.data();
    for (const Item& item : items) {
        target[low[item.code >> lowShift & lowMask]++] = item;
    }
    Item* const sorted = items.data();
    for (const Item& item : scratch) {
        sorted[high[item.code >> highShift]++] = item;
    }
}

void ImportanceSort::SortEqualDigits(std::span<Item> items) const
{
    const auto areEqual = [this, &items](std::size_t one, std::size_t other) {
        return (items[one].code ^ items[other].code) >> ignoredBits == 0;
    };
    for (std::size_t begin = 0, end = 1; end < items.size(); begin = end++) {
        if (!areEqual(begin, end)) {
            continue;
        }
        while (end < items.size() && areEqual(begin, end)) {
            ++end;
        }
        SortByComparison(items.subspan(begin, end - begin));
    }
}

void ImportanceSort::SortByComparison(std::span<Item> items) const
{
    const auto isBefore = [this](const Item& left, const Item& right) {
        const std::uint64_t leftKey = KeyOf(left);
        const std::uint64_t rightKey = KeyOf(right);
        return leftKey != rightKey ? leftKey < rightKey : left.code < right.code;
    };
    // The codes are not needed any more: numbers in their place make the sort stable.
    std::uint32_t number = 0;
    for (Item& item : items) {
        item.code = number++;
    }
    // Often many keys are equal, and their items are in order.
    if (!std::is_sorted(items.begin(), items.end(), isBefore)) {
        std::sort(items.begin(), items.end(), isBefore);
    }
}

std::uint64_t ImportanceSort::KeyOf(const Item& item) const
{
    const SoundRow row = RowAt(blocks, item.row);
    return order == ByDistance ? ~row.GetPlainKey() : row.GetWeightedKey();
}

} // namespace Quon
