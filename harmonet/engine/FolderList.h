#pragma once

#include "harmonet/engine/File.h"

/// Lists native folders. Internal to the engine; any thread may call it.

namespace Quon::FolderList
{

/// Adds the names of the regular files in a folder and its subfolders, as paths relative to it with `/`
/// between their parts, after `prefix`. Links to folders, and folders more than 32 levels deep, are not
/// followed; an entry that cannot be examined is omitted. \p folder is a path returned by NativePath.h. The
/// result is one of File::OpenCode.
Result Add(const EngineString& folder, const EngineString& prefix, EngineVector<EngineString>& names);

} // namespace Quon::FolderList
