#pragma once

/// A look at the file of a loadable library before the platform's loader gets it. Internal to the engine.

namespace Quon
{

/// False if the file at \p path cannot be read, is no loadable library of this platform, or lacks a part that
/// the loader would map. The loader itself does not look: it maps what is not there and the process dies at
/// the first touch, which a broken download must not do to a game.
bool IsWholeLibraryImage(const char* path);

} // namespace Quon
