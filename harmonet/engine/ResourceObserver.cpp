#include "harmonet/engine/ResourceObserver.h"

namespace Quon
{

ResourceObserver::~ResourceObserver() = default;

} // namespace Quon
