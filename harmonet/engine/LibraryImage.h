#pragma once

/// Checks the file of a loadable library before the platform's loader opens it. Internal to the engine.

namespace Quon
{

/// Returns false if the file at \p path cannot be read, is not a loadable library of this platform, or lacks
/// a part that the loader would map. The loader itself does not check: it maps the missing part, and the
/// process crashes at the first access, which a broken download must not cause.
bool IsWholeLibraryImage(const char* path);

} // namespace Quon
