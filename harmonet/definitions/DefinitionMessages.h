#pragma once

#include "harmonet/definitions/DefinitionListener.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

/// While it lives, the remarks on one definition become messages, each with the name of the file and the
/// line, as well as going to the listener that was there before. It lives during one load, in the place of
/// that listener. Internal to the definitions.
class DefinitionMessages final : public DefinitionListener
{
public:
    /// `listenerPlace` is where the listener is kept. Without a message hook nothing is changed.
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
