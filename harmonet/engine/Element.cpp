#include "harmonet/engine/Element.h"

namespace Quon
{

Element::~Element() = default;

void Element::Render(Display*) {}

} // namespace Quon
