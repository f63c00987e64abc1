#pragma once

namespace Quon
{

/// Makes the functions of al.h and alc.h callable. In a build that links to OpenAL Soft they always are.
/// Otherwise, as on Windows, the first successful call loads the library from beside the engine library, or
/// from where the platform searches a program's libraries. Returns false if there is none; no function of
/// OpenAL may be called then. A loaded library stays until the process ends, since it may have its own
/// threads. Task thread.
bool LoadAlLibrary();

} // namespace Quon
