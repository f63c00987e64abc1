#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Quon
{

/// A new folder of the operating system, which goes with all that is in it at the end of its life.
class TempFolder
{
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& GetPath() const { return path; }
    /// Writes a file, in place of one that is there.
    void Write(const std::string& name, const std::vector<unsigned char>& bytes) const;
    void Write(const std::string& name, const std::string& text) const;
    void Remove(const std::string& name) const;
    /// Cuts a file that may be open, or makes it longer.
    void Resize(const std::string& name, std::uintmax_t bytes) const;

private:
    std::filesystem::path path;
};

} // namespace Quon
