#include "harmonet/definitions/DefinitionMessages.h"

#include "harmonet/engine/Messages.h"

#include <new>

namespace Quon
{

namespace
{

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
    try {
        EngineString line;
        if (remark.line > 0) {
            Messages::Append(line, ", line ");
            Messages::Append(line, remark.line);
        }
        Report(LevelOf(remark.fault), "definition '", name, "' of owner '", owner, "'", line, ": ",
            DescribeRemark(remark));
    }
    catch (const std::bad_alloc&) {
        // Like any message, it is dropped if memory runs out.
    }
    if (previous) {
        previous->OnRemark(remark);
    }
}

} // namespace Quon
