#pragma once

#include "harmonet/engine/File.h"

#include <string_view>

/// Native paths. Internal to the engine; each platform has its own implementation (`posix/NativePath.cpp`,
/// `windows/NativePath.cpp`). All text is UTF-8. Any thread may call this.

namespace Quon::NativePath
{

/// The canonical path of a folder, with all links resolved; empty if there is no such folder. Only Resolve()
/// interprets it.
EngineString FindFolder(const char* folder);

/// Checks the text of a file name below a root, without accessing any file. The name must not be empty.
/// Returns BadName if the platform cannot have a regular file of this name, OutsideRoot if the name is not
/// relative to the root or leads out of it, otherwise Opened.
Result CheckName(std::string_view name);

/// Resolves \p name, which must have passed CheckName(), below \p root, which FindFolder() has returned:
/// stores the path with all links resolved and ensures that it is below the root. The result is one of
/// File::OpenCode; the path is set on 0 only.
Result Resolve(const EngineString& root, std::string_view name, EngineString& path);

/// If names that differ only in case or separators denote the same file on this platform, sets \p folded to
/// their common form. Otherwise, or if the name is already in that form, returns false and changes nothing.
bool FoldName(std::string_view name, EngineString& folded);

} // namespace Quon::NativePath
