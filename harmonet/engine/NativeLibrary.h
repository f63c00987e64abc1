#pragma once

#include "harmonet/engine/Alloc.h"

#include <string_view>

/// The platform's loader of libraries. Internal to the engine; each platform has its own implementation
/// (`posix/NativeLibrary.cpp`, `windows/NativeLibrary.cpp`). Paths are UTF-8. Task thread only.

namespace Quon::NativeLibrary
{

/// The characters that separate the folders of a path.
std::string_view GetSeparators();

/// The folder of the engine library, with a trailing separator; empty if it cannot be determined.
EngineString GetOwnFolder();

/// Whether anything exists at this path.
bool Exists(const char* path);

/// Loads a library, runs its initialisation, and returns its handle, or null. A name without a folder is
/// searched by the platform's own rules. Does not show message boxes.
void* Load(const char* path);

/// The platform's description of why the last Load() failed. Call it right after Load() only.
EngineString DescribeFailure();

void Unload(void* handle);

/// Returns null if the library has no such symbol.
void* FindSymbol(void* handle, const char* name);

} // namespace Quon::NativeLibrary
