#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/FXRecords.h"
#include "harmonet/engine/PString.h"

#include <cstddef>
#include <span>

namespace Quon
{

/// One keyword in the block of an effect: which field of the record it fills.
struct EffectField
{
    const PString& keyword; ///< Asterisk included.
    std::size_t offset; ///< Of the field in the record, in bytes.
    bool isInt; ///< A 32-bit signed integer; else a 32-bit float.
    double least; ///< Minimum of the range that the effect works in. The reading stores any value.
    double most; ///< Maximum of that range.
};

/// What a sound definition can say about one effect.
struct HARMONET_API EffectKeywords
{
    const PString& keyword; ///< Opens the effect's block.
    SndFX effect; ///< Which effect that is.
    std::span<const EffectField> fields; ///< The keywords in its block.

    /// The field of that keyword, or null.
    const EffectField* FindField(const PString& fieldKeyword) const;
};

/// The effect whose block that keyword opens, or null. Any thread, once HarmonetStrings::Init() has run;
/// before that nothing is found.
HARMONET_API const EffectKeywords* FindEffectKeywords(const PString& keyword);
/// The keywords of an effect that a definition can name.
HARMONET_API const EffectKeywords& GetEffectKeywords(SndFX effect);

} // namespace Quon
