#pragma once

#include "harmonet/engine/File.h"

#include <cstdint>

/// One open file of the operating system. Internal to the engine; each platform has its own implementation
/// (`posix/NativeFile.cpp`, `windows/NativeFile.cpp`). Paths are those that NativePath.h gives. Thread rules
/// are those of File.

namespace Quon::NativeFile
{

/// The system's handle or descriptor. No file has `noHandle`.
using Handle = std::intptr_t;
inline constexpr Handle noHandle = -1;

/// Examines a file without opening it for reading. The result is one of File::OpenCode; the stamp is set with
/// 0 only.
Result GetStamp(const EngineString& path, FileStamp& stamp);

/// Opens a regular file of 1 byte to 2 GiB - 1 for reading, without waiting and without following a link.
/// The result is one of File::OpenCode; the handle is set with 0 only and belongs to the caller.
Result Open(const EngineString& path, Handle& handle);

/// Returns the new position from the start, or -1, the position being unchanged.
std::int64_t Seek(Handle handle, std::int64_t offset, FileSeek origin);

/// Returns the bytes read: fewer than \p bytes at the end of the file, or when the system fails.
std::size_t Read(Handle handle, void* buffer, std::size_t bytes);

/// False if the system reports an error; the handle is gone in any case.
bool Close(Handle handle);

/// The length in bytes, or -1 if the system does not tell.
std::int64_t GetLength(Handle handle);

} // namespace Quon::NativeFile
