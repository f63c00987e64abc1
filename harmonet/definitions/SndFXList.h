#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// One entry of an effect list: which effect, the bytes behind this head, and then the record. For
/// SndFXEnvReverb alone a 32-bit signed word, the quality of the reverb, stands between head and record.
struct SndFXDesc
{
    /// Which effect.
    SndFX effect;
    std::uint32_t size; ///< Bytes from the end of this head to the next entry.

    /// The record, behind the quality word where there is one.
    const void* GetRecord() const
    {
        const auto* body = reinterpret_cast<const unsigned char*>(this + 1);
        return effect == SndFXEnvReverb ? body + sizeof(std::int32_t) : body;
    }

    /// The quality word of an environmental reverb. Other effects have none.
    std::int32_t GetQuality() const { return *reinterpret_cast<const std::int32_t*>(this + 1); }
};

static_assert(sizeof(SndFXDesc) == 8);

/// A list of effects with their parameters, in the order in which they were first added, each at most once.
///
/// The list is a handle on one block of memory, so that it can be handed to a driver in another library and
/// copied with a single copy: the size of the whole block in bytes, the number of entries, both 32 bits, and
/// then the entries without padding. It has value semantics without ownership: copying the list copies the
/// handle. Whoever holds a list as a field owns the block and frees it with Clear(); a borrower never does.
class HARMONET_API SndFXList
{
public:
    SndFXList() = default;

    /// Adds an effect, or overwrites the parameters of one that is there, in its place. `size` is what the
    /// entry's head is to say: the record's size, and 4 more for SndFXEnvReverb. `quality` goes in front of
    /// the record of SndFXEnvReverb and is ignored otherwise. A new entry moves the block, so that pointers
    /// into it are no longer valid. An entry that is there keeps its size: a `size` other than its own is cut
    /// or leaves the rest as it was. `record` may point into this list's block.
    void AddFX(SndFX effect, const void* record, unsigned long size, long quality);

    /// The entry of that effect, or null. Valid until the next AddFX() or Clear().
    SndFXDesc* GetFXDesc(SndFX effect);
    const SndFXDesc* GetFXDesc(SndFX effect) const;

    /// The number of entries.
    unsigned long GetNumEffects() const;

    /// The first entry, or null for an empty list. The next one begins 8 + its `size` bytes later.
    unsigned char* GetEffectsArr() const;

    /// A new list with a block of its own; the caller owns it. An empty list gives an empty one.
    SndFXList Duplicate() const;

    /// A new list, owned by the caller, with those entries whose bit is set in `mask`; all of them, if the
    /// mask has all nine bits.
    SndFXList DuplicateFiltered(unsigned long mask) const;

    /// Frees the block and empties the list. Copies of the handle must not be used any more.
    void Clear();

    /// The address of the block, null for an empty list: two lists with the same address are one.
    const void* GetBlock() const { return block; }

private:
    unsigned char* block = nullptr;
};

/// The parameters with which each effect starts, by SndFX from 0 to 8, and the size of its record in bytes.
struct SndFXDefault
{
    /// The defaults, and their size in bytes.
    const void* record;
    unsigned long size;
};

/// The entry of `effect`, which must be below numResourceFX. That of SndFXEnvReverb is the preset
/// fxEnvReverbDefault, which the game can change.
HARMONET_API const SndFXDefault& GetFXDefault(SndFX effect);

/// The quality of an environmental reverb for which nobody has named one.
inline constexpr long defaultEnvReverbQuality = 2;

} // namespace Quon
