#include "harmonet/kernel/NameIndex.h"

#include <algorithm>

namespace Quon
{

namespace
{

std::uint32_t HashOf(const void* file, const void* owner)
{
    constexpr std::uint64_t spread = 0x9E3779B97F4A7C15;
    constexpr int highWord = 32;
    const std::uint64_t both =
        reinterpret_cast<std::uintptr_t>(file) * spread + reinterpret_cast<std::uintptr_t>(owner);
    return static_cast<std::uint32_t>(both * spread >> highWord);
}

} // namespace

std::uint32_t NameIndex::Use(const PString& fileName, const PString& substName)
{
    std::uint32_t number = Find(fileName, substName);
    if (number == none) {
        // Allocations come first, including that for the return of the number.
        index.Reserve([this](std::uint32_t other) { return HashOf(names[other].file, names[other].owner); });
        if (freeNumbers.empty() && names.size() == names.capacity()) {
            constexpr std::size_t fewNames = 16;
            names.reserve(std::max(2 * names.capacity(), fewNames));
            freeNumbers.reserve(names.capacity());
        }
        number = static_cast<std::uint32_t>(names.size());
        if (freeNumbers.empty()) {
            names.emplace_back();
        }
        else {
            number = freeNumbers.back();
            freeNumbers.pop_back();
        }
        names[number] = {fileName.GetIdentity(), substName.GetIdentity(), 0, 0, 0, true};
        index.Add(number, HashOf(names[number].file, names[number].owner));
    }
    ++names[number].numUsers;
    return number;
}

void NameIndex::GiveUp(std::uint32_t number)
{
    if (--names[number].numUsers > 0) {
        return;
    }
    index.Remove(
        number, [this](std::uint32_t other) { return HashOf(names[other].file, names[other].owner); });
    freeNumbers.push_back(number);
    constexpr std::size_t fewNames = 64;
    if (freeNumbers.size() == names.size() && names.size() > fewNames) {
        *this = {};
    }
}

std::uint32_t NameIndex::Find(const PString& fileName, const PString& substName) const
{
    const void* const file = fileName.GetIdentity();
    const void* const owner = substName.GetIdentity();
    return index.Find(HashOf(file, owner),
        [&](std::uint32_t number) { return names[number].file == file && names[number].owner == owner; });
}

void NameIndex::Enter(std::uint32_t number, std::uint32_t lengthMs)
{
    ++names[number].numListed;
    SetLength(number, lengthMs);
}

void NameIndex::SetLength(std::uint32_t number, std::uint32_t lengthMs)
{
    Name& name = names[number];
    if (name.numListed == 1) {
        name.lengthMs = lengthMs;
        name.isUniform = true;
    }
    else if (lengthMs != name.lengthMs) {
        name.isUniform = false;
    }
}

} // namespace Quon
