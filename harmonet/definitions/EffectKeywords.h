#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/FXRecords.h"
#include "harmonet/engine/PString.h"

#include <cstddef>
#include <span>

namespace Quon
{

/// One keyword in the block of an effect, and the field of the record that it fills.
struct EffectField
{
    const PString& keyword; ///< Asterisk included.
    std::size_t offset; ///< Of the field in the record, in bytes.
    bool isInt; ///< A 32-bit signed integer; otherwise a 32-bit float.
    double minimum; ///< Minimum of the valid range. The reader stores any value.
    double maximum; ///< Maximum of that range.
};

/// The keywords of one effect in a sound definition.
struct HARMONET_API EffectKeywords
{
    const PString& keyword; ///< Opens the effect's block.
    SndFX effect; ///< Which effect that is.
    std::span<const EffectField> fields; ///< The keywords in its block.

    /// Returns the field of that keyword, or null.
    const EffectField* FindField(const PString& fieldKeyword) const;
};

/// Returns the effect whose block that keyword opens, or null. Can be called from any thread after
/// HarmonetStrings::Init(); before that it returns null.
HARMONET_API const EffectKeywords* FindEffectKeywords(const PString& keyword);
/// Returns the keywords of an effect that definitions can use.
HARMONET_API const EffectKeywords& GetEffectKeywords(SndFX effect);

} // namespace Quon
