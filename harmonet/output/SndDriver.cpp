#include "harmonet/output/SndDriver.h"

namespace Quon
{

SndDriver::~SndDriver() = default;

} // namespace Quon
