#pragma once

namespace Quon
{

class Sound;

/// Notifies the owner of a sound that a block of memory lent by game code is no longer in use.
///
/// The readers only have a forward declaration of `Sound`; the room of `Sound` defines this function.
void NotifyBufferFree(Sound& owner, unsigned int soundID, void* buffer);

} // namespace Quon
