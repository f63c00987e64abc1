#include "harmonet/kernel/SndList.h"

#include "harmonet/instances/SndBaseRow.h"
#include "harmonet/voices/Growth.h"

#include <algorithm>
#include <cassert>
#include <iterator>

namespace Quon
{

namespace
{

// Serials may wrap around.
bool IsAfter(std::uint32_t serial, std::uint32_t other)
{
    return static_cast<std::int32_t>(serial - other) > 0;
}

} // namespace

std::uint32_t SndList::lastSerial = 0;

// Marks a sound as listed. Its entry is in the list already, since adding it can fail.
void SndList::Enter(Entry& entry, ListID id)
{
    const SoundRow row = entry.GetRow();
    assert(row.List() == ListID::None);
    if (++lastSerial == 0) {
        ++lastSerial;
    }
    row.Serial() = entry.serial = lastSerial;
    row.List() = id;
    ++count;
}

void SndList::DropStale()
{
    if (order.size() + added.size() > count) {
        std::erase_if(order, [](const Entry& entry) { return entry.IsStale(); });
        std::erase_if(added, [](const Added& other) { return other.entry.IsStale(); });
    }
}

void SndList::LimitStale()
{
    constexpr std::size_t fewEntries = 64;
    if (order.size() + added.size() > 2 * count + fewEntries) {
        DropStale();
    }
}

void SndList::Append(std::uint32_t row, ListID id)
{
    ForgetOrder();
    LimitStale();
    Enter(order.emplace_back(Entry{row, 0}), id);
}

void SndList::InsertSorted(std::uint32_t row, ListID id)
{
    LimitStale();
    const std::uint64_t key = GetCompareKey(SoundRows::At(row));
    if (isInOrder) {
        added.push_back({key, {row, 0}});
        Enter(added.back().entry, id);
        return;
    }
    const auto place = std::ranges::find_if(order,
        [key](const Entry& other) { return !other.IsStale() && GetCompareKey(other.GetRow()) >= key; });
    Enter(*order.insert(place, {row, 0}), id);
}

void SndList::Remove(SoundRow row)
{
    row.Serial() = 0;
    row.List() = ListID::None;
    if (--count == 0) {
        order.clear();
        added.clear();
        isInOrder = true;
    }
}

void SndList::ForgetOrder()
{
    Merge();
    isInOrder = false;
}

std::span<const SndList::Entry> SndList::GetEntries()
{
    Merge();
    return order;
}

std::span<const SndList::Entry> SndList::Compact()
{
    Merge();
    DropStale();
    return order;
}

void SndList::SetOrder(std::span<const ImportanceSort::Item> ranking, std::uint32_t first)
{
    if (count == 0) {
        return;
    }
    Entry* end = order.data();
    for (const ImportanceSort::Item& item : ranking) {
        *end = {item.row, SoundRows::At(item.row).Serial()};
        end += end->serial != 0;
    }
    order.resize(count);
    const auto place = std::ranges::find(order, first, &Entry::row);
    if (place != order.end()) {
        const std::uint64_t key = GetCompareKey(place->GetRow());
        const auto equals = std::find_if(std::make_reverse_iterator(place), order.rend(),
            [key](const Entry& other) { return GetCompareKey(other.GetRow()) != key; });
        std::rotate(equals.base(), place, place + 1);
    }
    isInOrder = true;
}

// From the most to the least important: each is inserted at its position, and each later entry moves only
// once.
void SndList::Merge()
{
    if (added.empty()) {
        return;
    }
    DropStale();
    // Among equals the latest comes first.
    std::ranges::sort(added, [](const Added& left, const Added& right) {
        return left.key != right.key ? left.key < right.key : IsAfter(left.entry.serial, right.entry.serial);
    });
    const std::size_t before = order.size();
    ResizeTo(order, before + added.size());
    auto end = order.begin() + static_cast<std::ptrdiff_t>(before);
    for (auto gap = order.end(); !added.empty(); added.pop_back()) {
        const auto place = std::ranges::lower_bound(order.begin(), end, added.back().key, {},
            [](const Entry& entry) { return GetCompareKey(entry.GetRow()); });
        gap = std::move_backward(place, end, gap);
        *--gap = added.back().entry;
        end = place;
    }
}

} // namespace Quon
