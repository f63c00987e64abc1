#pragma once

#include "harmonet/Export.h"
#include "harmonet/kernel/SoundRow.h"

#include <cstdint>

namespace Quon
{

/// The rows of all existing sounds, whether added to the kernel or not. A row keeps its address while its
/// sound exists, and its memory can be read while there is a kernel. Task thread only.
class HARMONET_INTERNAL_API SoundRows
{
public:
    /// Allocates a row for the sound; returns its number.
    static std::uint32_t Take(SndBase& sound);
    static void GiveBack(std::uint32_t row);
    static SoundRow& At(std::uint32_t row) { return chunks[row / chunkRows][row % chunkRows]; }
    /// Frees the memory if no sound exists.
    static void Trim();
    /// Calls `visit` for every row in use, in memory order. Rows may be added meanwhile.
    template<class Visit>
    static void ForEach(Visit visit)
    {
        for (std::uint32_t chunk = 0; chunk < numChunks; ++chunk) {
            if (useCounts[chunk] == 0) {
                continue;
            }
            for (SoundRow* row = chunks[chunk]; row != chunks[chunk] + chunkRows; ++row) {
                if (row->sound) {
                    visit(*row);
                }
            }
        }
    }

private:
    static constexpr std::uint32_t chunkRows = 128;
    static constexpr std::uint32_t noRow = 0xFFFFFFFF;

    static void AddChunk();

    // Raw pointers without a destructor: a sound may outlive the static objects. Not inline: on Windows each
    // library and program that includes this would have variables of its own.
    static SoundRow** chunks;
    static void** blocks; ///< In which the chunks lie, aligned.
    static std::uint32_t* useCounts; ///< Of the rows of each chunk.
    static std::uint32_t numChunks;
    static std::uint32_t capacity; ///< Of the three arrays.
    static std::uint32_t firstFree; ///< The free rows are chained through samplesLeft.
    static std::uint32_t numUsed;
};

inline SoundRow& SndBase::Row() const
{
    return static_cast<SoundRow&>(*rowHead);
}

} // namespace Quon
