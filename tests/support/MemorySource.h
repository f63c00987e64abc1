#pragma once

#include "harmonet/engine/FileSource.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace Quon
{

/// Files in memory, as a host has them in a pak, with the ways in which a host's streams can be awkward.
class MemorySource : public FileSource
{
public:
    using Bytes = std::vector<unsigned char>;

    Result Open(std::string_view name, std::unique_ptr<FileStream>& stream) override
    {
        opened.emplace_back(name);
        const auto found = files.find(name);
        if (found == files.end()) {
            return File::NotFound;
        }
        stream = std::make_unique<Stream>(*this, found->second);
        return File::Opened;
    }

    Result List(std::string_view folder, EngineVector<EngineString>& names) override
    {
        if (!isListed) {
            return FileSource::List(folder, names);
        }
        const std::string beginning = folder.empty() ? "" : std::string(folder) + '/';
        const std::size_t before = names.size();
        for (const auto& [name, bytes] : files) {
            if (name.starts_with(beginning)) {
                names.emplace_back(name.c_str());
            }
        }
        return names.size() > before || folder.empty() ? File::Opened : File::NotFound;
    }

    std::map<std::string, Bytes, std::less<>> files;
    bool isListed = true;
    std::vector<std::string> opened; ///< The names as they came.
    std::int64_t statedSize = 0; ///< In place of the real one, unless 0.
    std::size_t mostPerRead = static_cast<std::size_t>(-1);
    bool failsToSeek = false;
    bool failsToRead = false;
    int seeks = 0;

private:
    class Stream : public FileStream
    {
    public:
        Stream(MemorySource& newSource, const Bytes& newBytes)
            : source(newSource)
            , bytes(newBytes)
        {
        }

        std::int64_t GetSize() override
        {
            return source.statedSize != 0 ? source.statedSize : static_cast<std::int64_t>(bytes.size());
        }

        bool Seek(std::int64_t newPosition) override
        {
            ++source.seeks;
            if (source.failsToSeek) {
                return false;
            }
            position = static_cast<std::size_t>(newPosition);
            return true;
        }

        std::size_t Read(void* buffer, std::size_t count) override
        {
            if (source.failsToRead || position > bytes.size()) {
                return 0;
            }
            count = std::min({count, bytes.size() - position, source.mostPerRead});
            std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(position), count,
                static_cast<unsigned char*>(buffer));
            position += count;
            return count;
        }

    private:
        MemorySource& source;
        const Bytes& bytes;
        std::size_t position = 0;
    };
};

} // namespace Quon
