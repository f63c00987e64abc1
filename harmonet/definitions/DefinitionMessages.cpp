#include "harmonet/definitions/DefinitionMessages.h"

#include "harmonet/engine/Messages.h"

namespace Quon
{

namespace
{

template<class... Parts>
EngineString Join(const Parts&... parts)
{
    EngineString text;
    (Messages::Append(text, parts), ...);
    return text;
}

EngineString DescribeUnreadable(const DefinitionRemark& remark)
{
    return remark.found ? Join("expected ", remark.text, ", got '", remark.found, "'")
                        : Join("expected ", remark.text, ", and nothing stands there");
}

EngineString DescribeFault(const DefinitionRemark& remark)
{
    switch (remark.fault) {
    case DefinitionFault::NoDefinition:
        return "there is no *SOUND_DEFINITION with a block";
    case DefinitionFault::NoFile:
        return "no sound file is named by *FILE";
    case DefinitionFault::OutsideDefinition:
        return "passed over: it stands outside the definition";
    case DefinitionFault::UnknownKeyword:
        return "passed over: the keyword is unknown here";
    case DefinitionFault::LeftOver:
        return "passed over in part: more stands there than it takes";
    case DefinitionFault::Unreadable:
        return DescribeUnreadable(remark);
    case DefinitionFault::Refused:
    case DefinitionFault::OutOfRange:
        return Join(remark.value, " is outside ", remark.least, " to ", remark.most);
    case DefinitionFault::RateDropped:
        return "the rate is dropped: a sound with effects cannot change it";
    case DefinitionFault::NoBlock:
        return "a block is missing";
    case DefinitionFault::TooFewPoints:
        return "a line has two points at least";
    case DefinitionFault::Lost:
        return "lost: it stands after a place where the reading stopped";
    case DefinitionFault::Text:
        break;
    }
    return remark.text;
}

MessageLevel LevelOf(DefinitionFault fault)
{
    const bool isFatal = fault == DefinitionFault::NoDefinition || fault == DefinitionFault::NoFile;
    return isFatal ? MessageLevel::Error : MessageLevel::Warning;
}

} // namespace

DefinitionMessages::DefinitionMessages(
    DefinitionListener*& listenerPlace, const PString& newOwner, const char* newName)
    : place(listenerPlace)
    , previous(listenerPlace)
    , owner(newOwner)
    , name(newName)
{
    if (Messages::AreWanted()) {
        place = this;
    }
}

DefinitionMessages::~DefinitionMessages()
{
    place = previous;
}

void DefinitionMessages::OnKeyword(const PString& block, const PString& keyword, int line)
{
    if (previous) {
        previous->OnKeyword(block, keyword, line);
    }
}

void DefinitionMessages::OnRemark(const DefinitionRemark& remark)
{
    const EngineString line = remark.line > 0 ? Join(", line ", remark.line) : EngineString();
    Report(LevelOf(remark.fault), "definition '", name, "' of owner '", owner, "'", line, ": ",
        remark.keyword, remark.keyword.IsEmpty() ? "" : ": ", DescribeFault(remark));
    if (previous) {
        previous->OnRemark(remark);
    }
}

} // namespace Quon
