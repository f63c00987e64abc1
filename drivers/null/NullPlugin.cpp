#include "drivers/common/DriverExport.h"
#include "drivers/null/NullDriver.h"

HARMONET_DRIVER_EXPORT Quon::SndDriver* CreateSoundDriver()
{
    return new Quon::NullDriver;
}
