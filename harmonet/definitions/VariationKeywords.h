#pragma once

#include "harmonet/definitions/SoundVariation.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

class BlockReader;
class DefinitionReport;

/// The keywords of a definition for its variation between starts and its limits. Internal to the definitions.
class VariationReader
{
public:
    VariationReader(SoundVariation& newVariation, SoundLimits& newLimits, const DefinitionReport& newReport)
        : variation(newVariation)
        , limits(newLimits)
        , report(newReport)
    {
    }

    /// Reads the values of that keyword. Sets `isRead` to false if one of them could not be read, which ends
    /// reading of the definition. Returns whether the keyword is one of these.
    bool Read(const PString& keyword, BlockReader& reader, bool& isRead);

private:
    bool ReadVariant(BlockReader& reader);
    bool ReadRange(const PString& keyword, BlockReader& reader, double least, double most, float normal,
        float& minimum, float& maximum) const;
    bool ReadCount(const PString& keyword, BlockReader& reader, int& count) const;
    template<class Value, std::size_t count>
    bool ReadWord(const PString& keyword, BlockReader& reader, const char* wanted,
        const char* const (&words)[count], Value& value) const;

    SoundVariation& variation;
    SoundLimits& limits;
    const DefinitionReport& report;
};

} // namespace Quon
