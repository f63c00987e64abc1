#pragma once

#include "harmonet/definitions/DefinitionListener.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

/// During its lifetime, turns the remarks on one definition into messages with file name and line, and also
/// forwards them to the previous listener. It replaces that listener during one load. Internal to the
/// definitions.
class DefinitionMessages final : public DefinitionListener
{
public:
    /// `listenerPlace` is the variable that holds the listener. Does nothing without a message hook.
    DefinitionMessages(DefinitionListener*& listenerPlace, const PString& newOwner, const char* newName);
    ~DefinitionMessages() override;

    void OnKeyword(const PString& block, const PString& keyword, int line) override;
    void OnRemark(const DefinitionRemark& remark) override;

private:
    DefinitionListener*& place;
    DefinitionListener* const previous;
    const PString& owner;
    const char* name;
};

} // namespace Quon
