#include "harmonet/output/SndDriver.h"

namespace Quon
{

SndDriver::~SndDriver() = default;

bool SndDriver::HasLostOutput() const
{
    return false;
}

} // namespace Quon
