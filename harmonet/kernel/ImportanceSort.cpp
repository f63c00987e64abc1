#include "harmonet/kernel/ImportanceSort.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Quon
{

namespace
{

using Item = ImportanceSort::Item;
using Keys = std::span<const std::uint64_t>;

constexpr std::uint64_t LowBits(int count)
{
    return (std::uint64_t{1} << count) - 1;
}

void SortByComparison(std::span<Item> items, Keys keys, std::uint32_t first)
{
    const auto isBefore = [keys, first](const Item& left, const Item& right) {
        const std::uint64_t leftKey = keys[left.number - first];
        const std::uint64_t rightKey = keys[right.number - first];
        return leftKey != rightKey ? leftKey < rightKey : left.number < right.number;
    };
    // Often many keys are equal, and their items are in order.
    if (!std::is_sorted(items.begin(), items.end(), isBefore)) {
        std::sort(items.begin(), items.end(), isBefore);
    }
}

void SortEqualDigits(std::span<Item> items, Keys keys, std::uint32_t first)
{
    for (std::size_t end = 1; end < items.size(); ++end) {
        if (items[end].digits != items[end - 1].digits) {
            continue;
        }
        const std::size_t begin = end - 1;
        while (end < items.size() && items[end].digits == items[begin].digits) {
            ++end;
        }
        SortByComparison(items.subspan(begin, end - begin), keys, first);
    }
}

void SumUp(std::uint32_t* counts, std::size_t size)
{
    std::uint32_t begin = 0;
    for (std::size_t value = 0; value < size; ++value) {
        begin += std::exchange(counts[value], begin);
    }
}

} // namespace

void ImportanceSort::Sort(std::span<Item> items, Keys keys, std::uint32_t first)
{
    const Digits digits = TakeDigits(items, keys, first);
    constexpr std::size_t fewItems = 48;
    if (items.size() < fewItems) {
        SortByComparison(items, keys, first);
        return;
    }
    Scatter(items, digits);
    if (!digits.areAll) {
        SortEqualDigits(items, keys, first);
    }
}

// Takes the digits from the keys without the leading bits of each half that are equal in all keys.
ImportanceSort::Digits ImportanceSort::TakeDigits(std::span<Item> items, Keys keys, std::uint32_t first)
{
    constexpr int wordBits = 32;
    constexpr std::size_t manyItems = 3000;
    const int digitBits = items.size() < manyItems ? 9 : 11;
    std::uint64_t differing = 0;
    for (const std::uint64_t key : keys) {
        differing |= key ^ keys.front();
    }
    const int lowerBits = std::bit_width(static_cast<std::uint32_t>(differing));
    const int upperBits = std::bit_width(static_cast<std::uint32_t>(differing >> wordBits));
    const int allBits = lowerBits + upperBits;
    const int usedBits = std::min(allBits, 2 * digitBits);
    const std::uint64_t lowerMask = LowBits(lowerBits);
    const std::uint64_t upperMask = LowBits(upperBits);
    Item* item = items.data();
    for (const std::uint64_t key : keys) {
        const std::uint64_t packed = (key >> wordBits & upperMask) << lowerBits | (key & lowerMask);
        *item++ = {static_cast<std::uint32_t>(packed >> (allBits - usedBits)), first++};
    }
    return {usedBits / 2, usedBits - usedBits / 2, usedBits == allBits};
}

// Stable sorts by the lower digit and then by the higher one.
void ImportanceSort::Scatter(std::span<Item> items, const Digits& digits)
{
    const int lowBits = digits.lowBits;
    const auto lowMask = static_cast<std::uint32_t>(LowBits(lowBits));
    const std::size_t numLow = std::size_t{1} << lowBits;
    const std::size_t numHigh = std::size_t{1} << digits.highBits;
    scratch.resize(items.size());
    places.assign(numLow + numHigh, 0);
    std::uint32_t* const low = places.data();
    std::uint32_t* const high = low + numLow;
    for (const Item& item : items) {
        ++low[item.digits & lowMask];
        ++high[item.digits >> lowBits];
    }
    SumUp(low, numLow);
    SumUp(high, numHigh);
    Item* const target = scratch.data();
    for (const Item& item : items) {
        target[low[item.digits & lowMask]++] = item;
    }
    Item* const sorted = items.data();
    for (const Item& item : scratch) {
        sorted[high[item.digits >> lowBits]++] = item;
    }
}

} // namespace Quon
