#include "drivers/openal/AlLibrary.h"

namespace Quon
{

bool LoadAlLibrary()
{
    return true;
}

} // namespace Quon
