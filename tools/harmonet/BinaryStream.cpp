#include "tools/harmonet/BinaryStream.h"

#include "tools/harmonet/Output.h"

#include <array>
#include <cerrno>
#include <cstring>

namespace Tool
{

void CopyStream(std::FILE* from, const std::string& fromName, std::FILE* to, const std::string& toName)
{
    std::array<char, 65536> buffer;
    while (const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), from)) {
        if (std::fwrite(buffer.data(), 1, got, to) != got) {
            throw WriteError(toName, errno);
        }
    }
    if (std::ferror(from) != 0) {
        throw ToolError("cannot read " + fromName + ": " + std::strerror(errno), ExitCode::NoInput);
    }
    if (std::fflush(to) != 0) {
        throw WriteError(toName, errno);
    }
}

} // namespace Tool
