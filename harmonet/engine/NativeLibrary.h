#pragma once

#include "harmonet/engine/Alloc.h"

#include <string_view>

/// The platform's loader of libraries. Internal to the engine; each platform has its own implementation
/// (`posix/NativeLibrary.cpp`, `windows/NativeLibrary.cpp`). Paths are UTF-8. Task thread only.

namespace Quon::NativeLibrary
{

/// The characters that separate the folders of a path.
std::string_view GetSeparators();

/// The folder in which the engine library lies, with a separator at its end; empty if the loader does not
/// tell.
EngineString GetOwnFolder();

/// Something has this path, whatever it is.
bool Exists(const char* path);

/// Loads a library, runs its initialisation, and returns its handle, or null. A name without a folder is
/// searched for by the platform's own rules. Shows no message.
void* Load(const char* path);

/// Why the last Load() failed, in words of the platform. Right after it only.
EngineString DescribeFailure();

void Unload(void* handle);

/// Null if the library has no such symbol.
void* FindSymbol(void* handle, const char* name);

} // namespace Quon::NativeLibrary
