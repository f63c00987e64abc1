#include "examples/zip/ZipSource.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace Zip
{

namespace
{

struct CloseFile
{
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using OpenedFile = std::unique_ptr<zip_file_t, CloseFile>;

bool HasSize(const zip_stat_t& status)
{
    return (status.valid & ZIP_STAT_SIZE) != 0 && (status.valid & ZIP_STAT_INDEX) != 0;
}

class ZipStream : public Quon::FileStream
{
public:
    ZipStream(std::shared_ptr<Archive> newArchive, OpenedFile newFile, const zip_stat_t& status)
        : archive(std::move(newArchive))
        , file(std::move(newFile))
        , index(status.index)
        , size(static_cast<std::int64_t>(status.size))
        , isStored((status.valid & ZIP_STAT_COMP_METHOD) != 0 && status.comp_method == ZIP_CM_STORE)
    {
    }

    ~ZipStream() override
    {
        const std::lock_guard lock(archive->mutex);
        file.reset();
    }

    std::int64_t GetSize() override { return size; }

    bool Seek(std::int64_t position) override
    {
        const std::lock_guard lock(archive->mutex);
        if (isStored) {
            return zip_fseek(file.get(), position, SEEK_SET) == 0;
        }
        // Compressed data must be read from the start up to the position.
        if (!file || at > position) {
            file.reset(zip_fopen_index(archive->zip, index, 0));
            at = 0;
        }
        return file && SkipTo(position);
    }

    std::size_t Read(void* buffer, std::size_t bytes) override
    {
        const std::lock_guard lock(archive->mutex);
        return ReadOn(buffer, bytes);
    }

private:
    std::size_t ReadOn(void* buffer, std::size_t bytes)
    {
        const zip_int64_t got = file ? zip_fread(file.get(), buffer, bytes) : 0;
        at += std::max<zip_int64_t>(got, 0);
        return got > 0 ? static_cast<std::size_t>(got) : 0;
    }

    bool SkipTo(std::int64_t position)
    {
        std::array<char, 16384> skipped;
        while (at < position) {
            const auto left = static_cast<std::uint64_t>(position - at);
            if (ReadOn(skipped.data(), std::min<std::uint64_t>(left, skipped.size())) == 0) {
                return false;
            }
        }
        return true;
    }

    std::shared_ptr<Archive> archive; ///< Its mutex is locked for each use of `file`.
    OpenedFile file;
    zip_uint64_t index;
    std::int64_t size;
    bool isStored;
    std::int64_t at = 0; ///< The position of `file`, if it is compressed.
};

} // namespace

std::shared_ptr<ZipSource> ZipSource::Open(const char* path)
{
    int code = 0;
    zip_t* const zip = zip_open(path, ZIP_RDONLY, &code);
    if (!zip) {
        zip_error_t error;
        zip_error_init_with_code(&error, code);
        std::fprintf(stderr, "cannot open '%s': %s\n", path, zip_error_strerror(&error));
        zip_error_fini(&error);
        return nullptr;
    }
    return std::make_shared<ZipSource>(std::make_shared<Archive>(zip));
}

ZipSource::ZipSource(std::shared_ptr<Archive> newArchive)
    : archive(std::move(newArchive))
{
}

Quon::Result ZipSource::Open(std::string_view name, std::unique_ptr<Quon::FileStream>& stream)
{
    const std::lock_guard lock(archive->mutex);
    zip_stat_t status;
    // The name is null-terminated.
    if (zip_stat(archive->zip, name.data(), 0, &status) != 0) {
        return Quon::File::NotFound;
    }
    OpenedFile file(HasSize(status) ? zip_fopen_index(archive->zip, status.index, 0) : nullptr);
    if (!file) {
        return Quon::File::NotReadable;
    }
    stream = std::make_unique<ZipStream>(archive, std::move(file), status);
    return Quon::File::Opened;
}

Quon::Result ZipSource::GetStamp(std::string_view name, Quon::FileStamp& stamp)
{
    const std::lock_guard lock(archive->mutex);
    zip_stat_t status;
    if (zip_stat(archive->zip, name.data(), 0, &status) != 0) {
        return Quon::File::NotFound;
    }
    if (!HasSize(status)) {
        return Quon::File::NotReadable;
    }
    stamp.size = status.size;
    stamp.identity = status.index;
    stamp.modifiedNs = (status.valid & ZIP_STAT_MTIME) != 0 ? std::int64_t{status.mtime} * 1'000'000'000 : 0;
    return Quon::File::Opened;
}

Quon::Result ZipSource::List(std::string_view folder, Quon::EngineVector<Quon::EngineString>& names)
{
    const std::lock_guard lock(archive->mutex);
    const std::size_t before = names.size();
    const zip_int64_t count = zip_get_num_entries(archive->zip, 0);
    for (zip_int64_t index = 0; index < count; ++index) {
        const char* const text = zip_get_name(archive->zip, static_cast<zip_uint64_t>(index), 0);
        const std::string_view name = text != nullptr ? text : "";
        const bool isInFolder =
            folder.empty() || (name.starts_with(folder) && name.substr(folder.size()).starts_with('/'));
        // Folder entries of the archive end with a slash.
        if (isInFolder && !name.empty() && !name.ends_with('/')) {
            names.emplace_back(name);
        }
    }
    return folder.empty() || names.size() > before ? Quon::File::Opened : Quon::File::NotFound;
}

} // namespace Zip
