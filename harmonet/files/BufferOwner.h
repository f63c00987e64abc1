#pragma once

namespace Quon
{

class Sound;

/// Tells the owner of a sound that a block of memory that game code lent to it is no longer in use.
///
/// The readers know of `Sound` only that it exists; the room in which `Sound` lives defines this function.
void NotifyBufferFree(Sound& owner, unsigned int soundID, void* buffer);

} // namespace Quon
