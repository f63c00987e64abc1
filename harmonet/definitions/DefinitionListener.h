#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

/// Kinds of faults and ignored input in a sound definition.
enum class DefinitionFault
{
    NoDefinition, ///< There is no "*SOUND_DEFINITION" with a block. The definition does not load.
    NoFile, ///< No sound file was named. The definition does not load.
    OutsideDefinition, ///< The keyword is before or after the definition, where nothing is read.
    UnknownKeyword, ///< The keyword is unknown in this block and was ignored.
    LeftOver, ///< Extra values, or an unexpected block, of a known keyword; they were ignored.
    Unreadable, ///< A value is missing or of the wrong type. Reading of the block stopped here.
    Refused, ///< A value is out of range. Reading of the block stopped here.
    OutOfRange, ///< A value is out of range; reading continued.
    RateDropped, ///< Effects and a custom rate exclude each other; the rate was dropped here.
    NoBlock, ///< A block is missing. Reading stopped here.
    TooFewPoints, ///< A line has fewer than two points. Reading stopped here.
    Lost, ///< The keyword comes after a place where reading stopped.
    Text ///< The syntax is broken: an extra brace, an unterminated quote.
};

/// One remark on a definition. Everything it refers to is valid only during the call that passes it.
struct DefinitionRemark
{
    /// What is wrong.
    DefinitionFault fault;
    /// Counted from 1; 0 for a remark on the file as a whole.
    int line;
    /// The keyword, including the asterisk; empty if there is none.
    const PString& keyword;
    /// Unreadable: what was expected. Text: what is wrong. Otherwise null.
    const char* text = nullptr;
    /// Unreadable: what was found, null if there was nothing.
    const char* found = nullptr;
    /// Refused and OutOfRange: the value, and its range.
    double value = 0.0;
    double minimum = 0.0;
    double maximum = 0.0;
};

/// The remark in words, without file and line, such as "*GAIN: expected a number, got 'loud'; reading stops
/// here". Throws std::bad_alloc if memory runs out.
HARMONET_API EngineString DescribeRemark(const DefinitionRemark& remark);

/// Receives remarks on the sound definitions that are read, for a tool or a development build of a game; the
/// library itself ignores faults silently. Set with SoundDefResource::SetListener(), which does not take
/// ownership. Called on the thread that loads resources, from within the load. It must not load resources.
class HARMONET_API DefinitionListener
{
public:
    DefinitionListener() = default;
    DefinitionListener(const DefinitionListener&) = delete;
    DefinitionListener& operator=(const DefinitionListener&) = delete;
    virtual ~DefinitionListener();

    /// A keyword of the definition is about to be read, whether known or not. `block` is the keyword of the
    /// enclosing block, empty for the definition itself. The default does nothing.
    virtual void OnKeyword(const PString& block, const PString& keyword, int line);

    /// Something is wrong, or was ignored.
    virtual void OnRemark(const DefinitionRemark& remark) = 0;
};

} // namespace Quon
