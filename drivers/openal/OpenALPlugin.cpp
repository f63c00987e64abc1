#include "drivers/common/DriverExport.h"
#include "drivers/openal/OpenALDriver.h"

HARMONET_DRIVER_EXPORT Quon::SndDriver* CreateSoundDriver()
{
    return new Quon::OpenALDriver;
}
