#include "harmonet/engine/File.h"

#include "harmonet/engine/Exception.h"
#include "harmonet/engine/FileRoots.h"
#include "harmonet/engine/FolderList.h"
#include "harmonet/engine/NativeFile.h"
#include "harmonet/engine/NativePath.h"
#include "harmonet/engine/SourceFile.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Quon
{

namespace
{

/// The source file that the exception of Size() reports; hosts check for it.
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

bool File::AddRoot(const PString& owner, std::shared_ptr<FileSource> source)
{
    return FileRoots::Get().Add(owner, std::move(source));
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
    FileRoots::Place place;
    const Result resolved = FileRoots::Get().Resolve(owner, name, place);
    if (!resolved.IsOk()) {
        return resolved;
    }
    return place.source != nullptr ? SourceFile::GetStamp(*place.source, place.path, stamp)
                                   : NativeFile::GetStamp(place.path, stamp);
}

Result File::List(const PString& owner, const char* folder, EngineVector<EngineString>& names)
{
    FileRoots::Place place;
    EngineString name;
    const Result resolved = FileRoots::Get().ResolveFolder(owner, folder, place, name);
    if (!resolved.IsOk()) {
        return resolved;
    }
    const auto begin = static_cast<std::ptrdiff_t>(names.size());
    const Result listed = place.source != nullptr
        ? place.source->List(name, names)
        : FolderList::Add(place.path, name.empty() ? name : name + '/', names);
    std::sort(names.begin() + begin, names.end());
    return listed;
}

Result File::Open(const PString& owner, const char* name, unsigned long mode)
{
    Close();
    if (mode != modeRead) {
        return BadMode;
    }
    FileRoots::Place place;
    const Result resolved = FileRoots::Get().Resolve(owner, name, place);
    if (!resolved.IsOk()) {
        return resolved;
    }
    return place.source != nullptr ? SourceFile::Open(place.source, place.path, sourceFile)
                                   : NativeFile::Open(place.path, handle);
}

unsigned long File::Seek(long offset, FileSeek origin)
{
    const std::int64_t position = sourceFile != nullptr ? sourceFile->Seek(offset, origin)
        : IsOpen()                                      ? NativeFile::Seek(handle, offset, origin)
                                                        : -1;
    const bool isKnown = position >= 0 && static_cast<std::uint64_t>(position) < seekFailed;
    return isKnown ? static_cast<unsigned long>(position) : seekFailed;
}

unsigned long File::Read(void* buffer, unsigned long size, unsigned long count)
{
    if (!IsOpen() || (count != 0 && size > std::numeric_limits<unsigned long>::max() / count)) {
        return 0;
    }
    const std::size_t bytes = size * count;
    return static_cast<unsigned long>(
        sourceFile != nullptr ? sourceFile->Read(buffer, bytes) : NativeFile::Read(handle, buffer, bytes));
}

unsigned long File::Close()
{
    const bool isClosed = handle == NativeFile::noHandle || NativeFile::Close(handle);
    handle = NativeFile::noHandle;
    sourceFile.reset();
    knownSize = sizeUnknown;
    return isClosed ? 0 : 1;
}

unsigned long File::Size() const
{
    if (knownSize == sizeUnknown) {
        knownSize = sourceFile != nullptr ? sourceFile->GetLength()
            : IsOpen()                    ? NativeFile::GetLength(handle)
                                          : sizeUnknown;
    }
    if (knownSize == sizeUnknown) {
        throw FileEx(sizeFailedFile, sizeFailedLine, "Size() failed to get file length");
    }
    return static_cast<unsigned long>(knownSize);
}

const char* File::DescribeCode(int openCode)
{
    switch (openCode) {
    case NoRoot:
        return "has no root: none was added for its owner, or its folder no longer exists";
    case BadName:
        return "has an invalid name";
    case OutsideRoot:
        return "is outside its root";
    case NotFound:
        return "does not exist";
    case NotAFile:
        return "is not a regular file";
    case NotReadable:
        return "cannot be read: access is denied";
    case Empty:
        return "is empty";
    case TooLarge:
        return "is 2 GiB or larger";
    case NotListed:
        return "cannot be listed: its source does not support it";
    default:
        return "cannot be opened";
    }
}

} // namespace Quon
