#pragma once

namespace Tool
{

/// After this call, an interrupt such as Ctrl-C sets a flag, so that the program can end cleanly. A second
/// interrupt terminates it immediately.
void CatchInterrupt();

bool IsInterrupted();

} // namespace Tool
