#pragma once

#include "harmonet/instances/SndBase.h"
#include "harmonet/voices/SoundRows.h"

#include <cstdint>

namespace Quon
{

// What the library needs of a sound's row, apart from SndBase.h because that header is installed.

inline SoundRow SndBase::Row() const
{
    return SoundRows::At(rowNumber);
}

/// The key by which sounds are compared: see SndBase::SetCompareUsingMultiplier().
inline std::uint64_t GetCompareKey(SoundRow row)
{
    return SndBase::useMultiplier ? row.GetWeightedKey() : row.GetPlainKey();
}

} // namespace Quon
