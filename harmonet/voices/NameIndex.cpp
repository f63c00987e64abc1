#include "harmonet/voices/NameIndex.h"

#include <utility>

namespace Quon
{

namespace
{

constexpr std::size_t fewNames = 64;

} // namespace

std::uint32_t NameIndex::Use(const PString& fileName, const PString& substName)
{
    if (firstUnused == none) {
        names.push_back({{}, 0, 0, none, true});
        firstUnused = static_cast<std::uint32_t>(names.size() - 1);
    }
    constexpr std::size_t sparse = 16;
    if (numbers.bucket_count() > sparse * (numbers.size() + fewNames)) {
        numbers.rehash(0);
    }
    const Key key{fileName.GetIdentity(), substName.GetIdentity()};
    const auto [place, isNew] = numbers.try_emplace(key, firstUnused);
    Name& name = names[place->second];
    if (isNew) {
        firstUnused = name.lengthMs;
        name = {key, 0, 0, 0, true};
    }
    ++name.numUsers;
    return place->second;
}

void NameIndex::GiveUp(std::uint32_t number)
{
    Name& name = names[number];
    if (--name.numUsers > 0) {
        return;
    }
    numbers.erase(name.key);
    name.lengthMs = std::exchange(firstUnused, number);
    if (numbers.empty() && names.size() > fewNames) {
        *this = {};
    }
}

std::uint32_t NameIndex::Find(const PString& fileName, const PString& substName) const
{
    const auto place = numbers.find({fileName.GetIdentity(), substName.GetIdentity()});
    return place != numbers.end() ? place->second : none;
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
