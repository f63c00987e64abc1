#pragma once

#include "harmonet/engine/FileSource.h"

#include <memory>
#include <mutex>

#include <zip.h>

namespace Zip
{

/// An open archive that its streams share. The mutex guards it, because libzip is not thread-safe.
struct Archive
{
    explicit Archive(zip_t* opened)
        : zip(opened)
    {
    }
    ~Archive() { zip_discard(zip); }
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    zip_t* const zip;
    std::mutex mutex;
};

/// Makes the files of a zip archive available to Harmonet as a root. Stored files are read in place;
/// compressed files are inflated while they are read.
class ZipSource : public Quon::FileSource
{
public:
    /// Returns null, after a message on standard error, if the archive cannot be opened.
    static std::shared_ptr<ZipSource> Open(const char* path);

    explicit ZipSource(std::shared_ptr<Archive> newArchive);

    Quon::Result Open(std::string_view name, std::unique_ptr<Quon::FileStream>& stream) override;
    /// Reads the archive's directory and inflates nothing.
    Quon::Result GetStamp(std::string_view name, Quon::FileStamp& stamp) override;
    Quon::Result List(std::string_view folder, Quon::EngineVector<Quon::EngineString>& names) override;

private:
    std::shared_ptr<Archive> archive;
};

} // namespace Zip
