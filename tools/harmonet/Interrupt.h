#pragma once

namespace Tool
{

/// From here on the keys that interrupt a program only set a flag, so that it can end in its own way. Pressed
/// a second time they end it at once.
void CatchInterrupt();

bool IsInterrupted();

} // namespace Tool
