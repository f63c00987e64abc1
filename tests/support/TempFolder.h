#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Quon
{

/// The content of a file; empty if it cannot be read.
std::vector<unsigned char> ReadBytes(const std::filesystem::path& path);

/// A new temporary folder. The destructor removes it with its content.
class TempFolder
{
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& GetPath() const { return path; }
    /// The path of a file in the folder.
    std::string Path(const std::string& name) const { return (path / name).string(); }
    /// Writes a file, in place of one that is there and with the folders on its way; returns its path.
    std::string Write(const std::string& name, const std::vector<unsigned char>& bytes) const;
    std::string Write(const std::string& name, std::string_view text) const;
    void Remove(const std::string& name) const;
    /// Cuts a file that may be open, or makes it longer.
    void Resize(const std::string& name, std::uintmax_t bytes) const;

private:
    std::filesystem::path path;
};

} // namespace Quon
