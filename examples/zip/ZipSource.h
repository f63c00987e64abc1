#pragma once

#include "harmonet/engine/FileSource.h"

#include <memory>
#include <mutex>

#include <zip.h>

namespace Zip
{

/// An open archive, which its streams share, with the mutex that guards it: libzip takes one thread at a
/// time.
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

/// The files of a zip archive as a root for Harmonet. What is stored without compression is read in place,
/// what is compressed is inflated while it is read.
class ZipSource : public Quon::FileSource
{
public:
    /// Null, after a message to the standard error stream, if the archive cannot be opened.
    static std::shared_ptr<ZipSource> Open(const char* path);

    explicit ZipSource(std::shared_ptr<Archive> newArchive);

    Quon::Result Open(std::string_view name, std::unique_ptr<Quon::FileStream>& stream) override;
    /// From the archive's directory, without inflating anything.
    Quon::Result GetStamp(std::string_view name, Quon::FileStamp& stamp) override;
    Quon::Result List(std::string_view folder, Quon::EngineVector<Quon::EngineString>& names) override;

private:
    std::shared_ptr<Archive> archive;
};

} // namespace Zip
