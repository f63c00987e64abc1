#pragma once

namespace Quon
{

/// Makes the functions of al.h and alc.h callable. A build that links to OpenAL Soft has them from the start;
/// one that does not, as on Windows, loads the library at the first call that finds it: beside the engine
/// library, or where the platform looks for libraries of a program. False if there is none; then no function
/// of OpenAL may be called. A library that was loaded stays until the process ends, since it may have threads
/// of its own. Task thread.
bool LoadAlLibrary();

} // namespace Quon
