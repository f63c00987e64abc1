#pragma once

#include "harmonet/Export.h"
#include "harmonet/voices/SoundRow.h"

#include <cstdint>
#include <span>

namespace Quon
{

/// The rows of all existing sounds, whether added to the kernel or not. A row keeps its place while its sound
/// exists, and its memory can be read while there is a kernel. Task thread only.
class HARMONET_INTERNAL_API SoundRows
{
public:
    /// Allocates a row for the sound; returns its number.
    static std::uint32_t Take(SndBase& sound);
    static void GiveBack(std::uint32_t row);
    static SoundRow At(std::uint32_t row) { return RowAt(GetBlocks(), row); }
    static std::span<SoundBlock* const> GetBlocks() { return {blocks, numBlocks}; }
    /// Frees the memory if no sound has a row.
    static void Trim();

private:
    static constexpr std::uint32_t noRow = 0xFFFFFFFF;

    static void AddBlock();

    // Raw pointers without a destructor: a sound may outlive the static objects. Not inline: on Windows each
    // library and program that includes this would have variables of its own.
    static SoundBlock** blocks;
    static std::uint32_t numBlocks;
    static std::uint32_t capacity;
    static std::uint32_t firstFree; ///< The free rows are chained through their names.
    static std::uint32_t numUsed;
};

/// An entry of a list of sounds (SndList).
struct ListEntry
{
    std::uint32_t row;
    std::uint32_t serial;

    SoundRow GetRow() const { return SoundRows::At(row); }
    bool IsStale() const { return GetRow().Serial() != serial; }
};

} // namespace Quon
