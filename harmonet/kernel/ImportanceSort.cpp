#include "harmonet/kernel/ImportanceSort.h"

namespace Quon
{

// A stable sort by the two digits, the lower one first.
void ImportanceSort::Scatter(std::span<Item> items, int lowBits, int highBits)
{
    const auto lowMask = static_cast<std::uint32_t>(LowBits(lowBits));
    const std::size_t numLow = std::size_t{1} << lowBits;
    const std::size_t numHigh = std::size_t{1} << highBits;
    scratch.resize(items.size());
    places.assign(numLow + numHigh, 0);
    std::uint32_t* const low = places.data();
    std::uint32_t* const high = low + numLow;
    for (const Item& item : items) {
        ++low[item.digits & lowMask];
        ++high[item.digits >> lowBits];
    }
    const auto sumUp = [](std::uint32_t* counts, std::size_t size) {
        std::uint32_t begin = 0;
        for (std::size_t value = 0; value < size; ++value)
            begin += std::exchange(counts[value], begin);
    };
    sumUp(low, numLow);
    sumUp(high, numHigh);
    for (const Item& item : items)
        scratch[low[item.digits & lowMask]++] = item;
    for (const Item& item : scratch)
        items[high[item.digits >> lowBits]++] = item;
}

} // namespace Quon
