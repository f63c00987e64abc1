#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

/// What is wrong with a place of a sound definition, or was passed over there.
enum class DefinitionFault
{
    NoDefinition, ///< There is no "*SOUND_DEFINITION" with a block. The definition does not load.
    NoFile, ///< No sound file was named. The definition does not load.
    OutsideDefinition, ///< The keyword stands in front of the definition or behind it, where nothing is read.
    UnknownKeyword, ///< There is no such keyword in this block; it was passed over.
    LeftOver, ///< Values or a block of a known keyword that it does not take; they were passed over.
    Unreadable, ///< A value is missing or of the wrong kind. The reading of the block stopped here.
    Refused, ///< A value that is out of its range. The reading of the block stopped here.
    OutOfRange, ///< A value that is out of its range; the reading went on.
    RateDropped, ///< Effects and a rate of one's own exclude each other, and here the rate was given up.
    NoBlock, ///< A block is missing. The reading stopped here.
    TooFewPoints, ///< A line of fewer than two points. The reading stopped here.
    Lost, ///< The keyword stands behind a place where the reading stopped.
    Text ///< The text's form is broken: a brace too many, a quote that is not closed.
};

/// One remark on a definition. All it refers to is valid during the call that hands it over.
struct DefinitionRemark
{
    /// What is wrong.
    DefinitionFault fault;
    /// Counted from 1; 0 for a remark on the file as a whole.
    int line;
    /// The keyword, asterisk included; empty if there is none.
    const PString& keyword;
    /// Unreadable: what was wanted. Text: what is wrong. Else null.
    const char* text = nullptr;
    /// Unreadable: what stands there, null if there is nothing.
    const char* found = nullptr;
    /// Refused and OutOfRange: the value, and its range.
    double value = 0.0;
    double least = 0.0;
    double most = 0.0;
};

/// The remark in words, without file and line, such as "*GAIN: expected a number, got 'loud'; the reading
/// stops here". Throws std::bad_alloc without memory.
HARMONET_API EngineString DescribeRemark(const DefinitionRemark& remark);

/// Hears what the reading of sound definitions comes across, for a tool or a development build of a game:
/// the library itself passes faults over in silence. Set with SoundDefResource::SetListener(), which does not
/// own it; called on the thread that loads resources, from inside the load. It must not load resources.
class HARMONET_API DefinitionListener
{
public:
    DefinitionListener() = default;
    DefinitionListener(const DefinitionListener&) = delete;
    DefinitionListener& operator=(const DefinitionListener&) = delete;
    virtual ~DefinitionListener();

    /// A keyword of the definition is going to be read, known or not. `block` is the keyword of the block in
    /// which it stands, empty for the definition itself. Does nothing here.
    virtual void OnKeyword(const PString& block, const PString& keyword, int line);

    /// Something is wrong, or was passed over.
    virtual void OnRemark(const DefinitionRemark& remark) = 0;
};

} // namespace Quon
