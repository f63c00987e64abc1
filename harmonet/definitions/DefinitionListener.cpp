#include "harmonet/definitions/DefinitionListener.h"

namespace Quon
{

DefinitionListener::~DefinitionListener() = default;

void DefinitionListener::OnKeyword(const PString&, const PString&, int) {}

} // namespace Quon
