#include "harmonet/kernel/NameIndex.h"

#include <algorithm>

namespace Quon
{

std::uint32_t NameIndex::Use(const PString& fileName, const PString& substName)
{
    const Key key(fileName.GetIdentity(), substName.GetIdentity());
    // What needs memory comes first, for the return of the number too.
    if (freeNumbers.empty() && names.size() == names.capacity()) {
        constexpr std::size_t fewNames = 16;
        names.reserve(std::max(2 * names.capacity(), fewNames));
        freeNumbers.reserve(names.capacity());
    }
    const auto next = freeNumbers.empty() ? static_cast<std::uint32_t>(names.size()) : freeNumbers.back();
    const auto [place, isNew] = numbers.try_emplace(key, next);
    if (isNew && freeNumbers.empty()) {
        names.push_back({key, 0, 0, 0, true});
    }
    else if (isNew) {
        freeNumbers.pop_back();
        names[next] = {key, 0, 0, 0, true};
    }
    ++names[place->second].numUsers;
    return place->second;
}

void NameIndex::GiveUp(std::uint32_t number)
{
    if (--names[number].numUsers > 0) {
        return;
    }
    numbers.erase(names[number].key);
    if (numbers.empty()) {
        names = {};
        freeNumbers = {};
        numbers = {};
        return;
    }
    freeNumbers.push_back(number);
    // The table of the map does not shrink by itself.
    constexpr std::size_t fewBuckets = 1024;
    constexpr std::size_t sparse = 8;
    if (numbers.bucket_count() > fewBuckets && numbers.bucket_count() > sparse * numbers.size()) {
        numbers.rehash(0);
    }
}

std::uint32_t NameIndex::Find(const PString& fileName, const PString& substName) const
{
    const auto place = numbers.find({fileName.GetIdentity(), substName.GetIdentity()});
    return place != numbers.end() ? place->second : none;
}

void NameIndex::Enter(std::uint32_t number, unsigned long lengthMs)
{
    ++names[number].numListed;
    SetLength(number, lengthMs);
}

void NameIndex::SetLength(std::uint32_t number, unsigned long lengthMs)
{
    Name& name = names[number];
    if (name.numListed == 1) {
        name = {name.key, name.numUsers, 1, lengthMs, true};
    }
    else if (lengthMs != name.lengthMs) {
        name.isUniform = false;
    }
}

} // namespace Quon
