#pragma once

#include "harmonet/engine/File.h"

#include <cstdint>

/// An open native file. Internal to the engine; each platform has its own implementation
/// (`posix/NativeFile.cpp`, `windows/NativeFile.cpp`). Paths are those returned by NativePath.h. The thread
/// rules are those of File.

namespace Quon::NativeFile
{

/// The system's handle or descriptor. No file has `noHandle`.
using Handle = std::intptr_t;
inline constexpr Handle noHandle = -1;

/// Examines a file without opening it for reading. The result is one of File::OpenCode; the stamp is set on 0
/// only.
Result GetStamp(const EngineString& path, FileStamp& stamp);

/// Opens a regular file of 1 byte to 2 GiB - 1 for reading, without blocking and without following a link.
/// The result is one of File::OpenCode; the handle is set on 0 only and owned by the caller.
Result Open(const EngineString& path, Handle& handle);

/// Returns the new position from the start, or -1 with the position unchanged.
std::int64_t Seek(Handle handle, std::int64_t offset, FileSeek origin);

/// Returns the number of bytes read, less than \p bytes at the end of the file or after a system error.
std::size_t Read(Handle handle, void* buffer, std::size_t bytes);

/// Returns false if the system reports an error; the handle is closed in any case.
bool Close(Handle handle);

/// The length in bytes, or -1 if it cannot be determined.
std::int64_t GetLength(Handle handle);

} // namespace Quon::NativeFile
