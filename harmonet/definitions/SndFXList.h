#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// The header of an effect list's entry: the effect and the number of bytes that follow. The record comes
/// after the header. For SndFXEnvReverb alone, a 32-bit signed word, the quality of the reverb, is placed
/// between header and record.
struct SndFXDesc
{
    /// Which effect.
    SndFX effect;
    std::uint32_t size; ///< Bytes from the end of this header to the next entry.

    /// The record, after the quality word if there is one.
    const void* GetRecord() const
    {
        const auto* body = reinterpret_cast<const unsigned char*>(this + 1);
        return effect == SndFXEnvReverb ? body + sizeof(std::int32_t) : body;
    }

    /// The quality word of an environmental reverb. Other effects do not have one.
    std::int32_t GetQuality() const { return *reinterpret_cast<const std::int32_t*>(this + 1); }
};

static_assert(sizeof(SndFXDesc) == 8);

/// A list of effects with their parameters, in the order in which they were first added, each at most once.
///
/// The list is a handle to one block of memory, so that it can be passed to a driver in another library and
/// copied with a single copy. The block holds its whole size in bytes and the number of entries, 32 bits
/// each, and then the entries without padding. The handle has value semantics without ownership: copying the
/// list copies the handle. A class with a list as its member owns the block and frees it with Clear(); a
/// borrower never frees it.
class HARMONET_API SndFXList
{
public:
    SndFXList() = default;

    /// Adds an effect, or overwrites the parameters of an existing one in place. `size` is the size stored in
    /// the entry's header: the record's size, plus 4 for SndFXEnvReverb. `quality` is stored before the
    /// record of SndFXEnvReverb and is ignored otherwise. A new entry moves the block and invalidates
    /// pointers into it. An existing entry keeps its size: a larger `size` is cut, and a smaller one leaves
    /// the rest unchanged. `record` may point into this list's block.
    void AddFX(SndFX effect, const void* record, unsigned long size, long quality);

    /// Returns the entry of that effect, or null. Valid until the next AddFX() or Clear().
    SndFXDesc* GetFXDesc(SndFX effect);
    const SndFXDesc* GetFXDesc(SndFX effect) const;

    /// The number of entries.
    unsigned long GetNumEffects() const;

    /// Returns the first entry, or null for an empty list. The next one begins 8 + its `size` bytes later.
    unsigned char* GetEffectsArr() const;

    /// Returns a deep copy owned by the caller. The copy of an empty list is empty.
    SndFXList Duplicate() const;

    /// Returns a copy, owned by the caller, of the entries whose bit is set in `mask`; of all entries if the
    /// mask has all nine bits.
    SndFXList DuplicateFiltered(unsigned long mask) const;

    /// Frees the block and empties the list. Copies of the handle become invalid.
    void Clear();

    /// The address of the block, null for an empty list. Two lists with the same address share their block.
    const void* GetBlock() const { return block; }

private:
    unsigned char* block = nullptr;
};

/// The default parameters of an effect, and the size of its record in bytes.
struct SndFXDefault
{
    /// The defaults, and their size in bytes.
    const void* record;
    unsigned long size;
};

/// Returns the defaults of `effect`, which must be below numResourceFX. Those of SndFXEnvReverb are the
/// preset fxEnvReverbDefault, which the game can change.
HARMONET_API const SndFXDefault& GetFXDefault(SndFX effect);

/// The default quality of an environmental reverb.
inline constexpr long defaultEnvReverbQuality = 2;

} // namespace Quon
