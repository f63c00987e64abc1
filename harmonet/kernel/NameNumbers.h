#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <utility>

namespace Quon
{

/// A small number for each pair of file name and owner name, from 0 up, so that like sounds can be counted in
/// an array. Task thread only.
///
/// Names are told apart by identity. A number is never taken back; it outlives its names, and may then come
/// to stand for another pair, which by then is the only one that can ask for it.
class NameNumbers
{
public:
    std::uint32_t Get(const PString& fileName, const PString& substName)
    {
        const auto next = static_cast<std::uint32_t>(numbers.size());
        return numbers.try_emplace({fileName.GetIdentity(), substName.GetIdentity()}, next).first->second;
    }

    std::size_t GetCount() const { return numbers.size(); }

private:
    using Key = std::pair<const void*, const void*>;
    struct Hash
    {
        std::size_t operator()(const Key& key) const
        {
            constexpr std::size_t spread = 0x9E3779B9;
            const std::hash<const void*> hash;
            return hash(key.first) * spread + hash(key.second);
        }
    };

    std::unordered_map<Key, std::uint32_t, Hash, std::equal_to<>,
        EngineAllocator<std::pair<const Key, std::uint32_t>>>
        numbers;
};

} // namespace Quon
