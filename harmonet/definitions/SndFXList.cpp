#include "harmonet/definitions/SndFXList.h"

#include "harmonet/engine/Alloc.h"

#include <algorithm>
#include <cstring>

namespace Quon
{

namespace
{

/// The header of a block.
struct BlockHead
{
    std::uint32_t size;
    std::uint32_t count;
};

static_assert(sizeof(BlockHead) == 8);

BlockHead* GetHead(unsigned char* block)
{
    return reinterpret_cast<BlockHead*>(block);
}

std::uint32_t GetSize(const unsigned char* block)
{
    return block ? reinterpret_cast<const BlockHead*>(block)->size : sizeof(BlockHead);
}

unsigned char* CopyBlock(const unsigned char* block, std::uint32_t newSize)
{
    auto* copy = static_cast<unsigned char*>(Alloc::New(newSize));
    if (block) {
        std::memcpy(copy, block, GetSize(block));
    }
    else {
        *GetHead(copy) = {sizeof(BlockHead), 0};
    }
    return copy;
}

SndFXDesc* GetNextDesc(SndFXDesc* desc)
{
    return reinterpret_cast<SndFXDesc*>(reinterpret_cast<unsigned char*>(desc + 1) + desc->size);
}

// Writes the parameters into an entry whose header is complete.
void StoreRecord(SndFXDesc* desc, const void* record, unsigned long size, long quality)
{
    auto* body = reinterpret_cast<unsigned char*>(desc + 1);
    unsigned long bytes = std::min<unsigned long>(size, desc->size);
    if (desc->effect == SndFXEnvReverb) {
        const auto word = static_cast<std::int32_t>(quality);
        if (bytes < sizeof word) {
            return;
        }
        std::memcpy(body, &word, sizeof word);
        body += sizeof word;
        bytes -= sizeof word;
    }
    std::memmove(body, record, bytes);
}

} // namespace

void SndFXList::AddFX(SndFX effect, const void* record, unsigned long size, long quality)
{
    if (SndFXDesc* present = GetFXDesc(effect)) {
        StoreRecord(present, record, size, quality);
        return;
    }
    const std::uint32_t oldSize = GetSize(block);
    const auto newSize = static_cast<std::uint32_t>(oldSize + sizeof(SndFXDesc) + size);
    unsigned char* grown = CopyBlock(block, newSize);
    GetHead(grown)->size = newSize;
    ++GetHead(grown)->count;
    auto* desc = reinterpret_cast<SndFXDesc*>(grown + oldSize);
    desc->effect = effect;
    desc->size = static_cast<std::uint32_t>(size);
    StoreRecord(desc, record, size, quality);
    // Freed last: the record may point into the old block.
    Alloc::Delete(block);
    block = grown;
}

SndFXDesc* SndFXList::GetFXDesc(SndFX effect)
{
    auto* desc = reinterpret_cast<SndFXDesc*>(GetEffectsArr());
    for (unsigned long left = GetNumEffects(); left > 0; --left, desc = GetNextDesc(desc)) {
        if (desc->effect == effect) {
            return desc;
        }
    }
    return nullptr;
}

const SndFXDesc* SndFXList::GetFXDesc(SndFX effect) const
{
    return SndFXList(*this).GetFXDesc(effect);
}

unsigned long SndFXList::GetNumEffects() const
{
    return block ? GetHead(block)->count : 0;
}

unsigned char* SndFXList::GetEffectsArr() const
{
    return block ? block + sizeof(BlockHead) : nullptr;
}

SndFXList SndFXList::Duplicate() const
{
    SndFXList copy;
    if (block) {
        copy.block = CopyBlock(block, GetSize(block));
    }
    return copy;
}

SndFXList SndFXList::DuplicateFiltered(unsigned long mask) const
{
    constexpr unsigned long all = (1UL << numResourceFX) - 1;
    if ((mask & all) == all) {
        return Duplicate();
    }
    SndFXList copy;
    auto* desc = reinterpret_cast<SndFXDesc*>(GetEffectsArr());
    for (unsigned long left = GetNumEffects(); left > 0; --left, desc = GetNextDesc(desc)) {
        if (desc->effect >= numResourceFX || !(mask >> desc->effect & 1)) {
            continue;
        }
        const long quality = desc->effect == SndFXEnvReverb ? desc->GetQuality() : defaultEnvReverbQuality;
        copy.AddFX(desc->effect, desc->GetRecord(), desc->size, quality);
    }
    return copy;
}

void SndFXList::Clear()
{
    Alloc::Delete(block);
    block = nullptr;
}

} // namespace Quon
