#include "harmonet/engine/File.h"

#include "harmonet/engine/Exception.h"
#include "harmonet/engine/FileRoots.h"
#include "harmonet/engine/NativeFile.h"
#include "harmonet/engine/NativePath.h"

#include <limits>

namespace Quon
{

namespace
{

/// Where the exception of Size() says that it comes from; hosts look for this place.
constexpr const char* sizeFailedFile = "..\\..\\..\\Inc\\File";
constexpr int sizeFailedLine = 2467;

} // namespace

File::File() = default;

File::~File()
{
    Close();
}

bool File::AddRoot(const PString& owner, const char* folder)
{
    return FileRoots::Get().Add(owner, folder);
}

void File::RemoveRoot(const PString& owner)
{
    FileRoots::Get().Remove(owner);
}

PString File::FoldName(const PString& name)
{
    EngineString folded;
    const bool isOther = name.GetText() != nullptr && NativePath::FoldName(name.GetText(), folded);
    return isOther ? PString(folded.c_str()) : name;
}

Result File::GetStamp(const PString& owner, const char* name, FileStamp& stamp)
{
    EngineString path;
    const Result resolved = FileRoots::Get().Resolve(owner, name, path);
    return resolved.IsOk() ? NativeFile::GetStamp(path, stamp) : resolved;
}

Result File::Open(const PString& owner, const char* name, unsigned long mode)
{
    Close();
    if (mode != modeRead) {
        return BadMode;
    }
    EngineString path;
    const Result resolved = FileRoots::Get().Resolve(owner, name, path);
    return resolved.IsOk() ? NativeFile::Open(path, handle) : resolved;
}

unsigned long File::Seek(long offset, FileSeek origin)
{
    const std::int64_t position = IsOpen() ? NativeFile::Seek(handle, offset, origin) : -1;
    const bool isKnown = position >= 0 && static_cast<std::uint64_t>(position) < seekFailed;
    return isKnown ? static_cast<unsigned long>(position) : seekFailed;
}

unsigned long File::Read(void* buffer, unsigned long size, unsigned long count)
{
    if (!IsOpen() || (count != 0 && size > std::numeric_limits<unsigned long>::max() / count)) {
        return 0;
    }
    return static_cast<unsigned long>(NativeFile::Read(handle, buffer, size * count));
}

unsigned long File::Close()
{
    const bool isClosed = !IsOpen() || NativeFile::Close(handle);
    handle = NativeFile::noHandle;
    knownSize = sizeUnknown;
    return isClosed ? 0 : 1;
}

unsigned long File::Size() const
{
    if (knownSize == sizeUnknown) {
        knownSize = IsOpen() ? NativeFile::GetLength(handle) : sizeUnknown;
    }
    if (knownSize == sizeUnknown) {
        throw FileEx(sizeFailedFile, sizeFailedLine, "Size() failed to get file length");
    }
    return static_cast<unsigned long>(knownSize);
}

} // namespace Quon
