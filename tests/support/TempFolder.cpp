#include "tests/support/TempFolder.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace Quon
{

std::vector<unsigned char> ReadBytes(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TempFolder::TempFolder()
{
    const std::filesystem::path parent = std::filesystem::temp_directory_path();
    std::random_device random;
    for (int tries = 0; tries < 100; ++tries) {
        path = parent / ("harmonet-test-" + std::to_string(random()));
        if (std::filesystem::create_directory(path)) {
            return;
        }
    }
    throw std::runtime_error("no temporary folder can be made");
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::string TempFolder::Write(const std::string& name, const std::vector<unsigned char>& bytes) const
{
    return Write(name, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

std::string TempFolder::Write(const std::string& name, std::string_view text) const
{
    std::filesystem::create_directories((path / name).parent_path());
    std::ofstream file(path / name, std::ios::binary | std::ios::trunc);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + name);
    }
    return Path(name);
}

void TempFolder::Remove(const std::string& name) const
{
    std::filesystem::remove(path / name);
}

void TempFolder::Resize(const std::string& name, std::uintmax_t bytes) const
{
    std::filesystem::resize_file(path / name, bytes);
}

} // namespace Quon
