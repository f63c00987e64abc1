#include "harmonet/engine/FileSource.h"

namespace Quon
{

FileStream::~FileStream() = default;

FileSource::~FileSource() = default;

Result FileSource::List(std::string_view, EngineVector<EngineString>&)
{
    return File::NotListed;
}

Result FileSource::GetStamp(std::string_view name, FileStamp& stamp)
{
    std::unique_ptr<FileStream> stream;
    const Result opened = Open(name, stream);
    if (!opened.IsOk()) {
        return opened;
    }
    const std::int64_t size = stream != nullptr ? stream->GetSize() : -1;
    if (size < 0) {
        return File::SystemError;
    }
    stamp = {};
    stamp.size = static_cast<std::uint64_t>(size);
    return File::Opened;
}

} // namespace Quon
