#pragma once

#include "harmonet/engine/File.h"

/// What a folder of the operating system holds. Internal to the engine; any thread may call it.

namespace Quon::FolderList
{

/// Adds the names of the regular files in a folder, and in those below it, as paths from there with `/`
/// between their parts, after `prefix`. Links to folders, and folders more than 32 deep, are not followed; an
/// entry that cannot be examined is left out. \p folder is a path as NativePath.h gives it. The result is one
/// of File::OpenCode.
Result Add(const EngineString& folder, const EngineString& prefix, EngineVector<EngineString>& names);

} // namespace Quon::FolderList
