#pragma once

#include "harmonet/engine/File.h"

#include <string_view>

/// Paths of the operating system. Internal to the engine; each platform has its own implementation
/// (`posix/NativePath.cpp`, `windows/NativePath.cpp`). All text is UTF-8. Any thread may call this.

namespace Quon::NativePath
{

/// The canonical path of a folder, with all links followed; empty if there
/// is no such folder. Only Resolve() interprets it.
EngineString FindFolder(const char* folder);

/// Judges the text of a file name below a root, without looking at any file. The name has at least one
/// character. BadName if the platform cannot have a regular file of this name, OutsideRoot if it does not
/// begin at the root or leads up from it, else Opened.
Result CheckName(std::string_view name);

/// Finds the file called \p name, which CheckName() accepts, below \p root, which FindFolder() gave: the path
/// with all links followed, after making sure that it lies below the root. The result is one of
/// File::OpenCode; the path is set with 0 only.
Result Resolve(const EngineString& root, std::string_view name, EngineString& path);

/// Where the platform has several names for one file that differ only in case or separators, sets \p folded
/// to the one text that they share. False, and no change, where each name is its own.
bool FoldName(std::string_view name, EngineString& folded);

} // namespace Quon::NativePath
