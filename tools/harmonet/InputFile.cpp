#include "tools/harmonet/InputFile.h"

#include "harmonet/engine/HostFile.h"
#include "tools/harmonet/BinaryStream.h"
#include "tools/harmonet/Console.h"
#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Tool
{

namespace
{

struct Close
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

void KeepStandardInput(const std::string& path)
{
    const std::unique_ptr<std::FILE, Close> kept(Quon::OpenHostFile(path.c_str(), "wb"));
    if (!kept) {
        throw ToolError(
            "cannot store standard input: " + std::string(std::strerror(errno)), ExitCode::NoOutput);
    }
    CopyStream(UseBinary(stdin), "standard input", kept.get(), "a temporary file");
}

} // namespace

InputFile::InputFile(const std::string& newShown, const std::string& nameForStream)
    : shown(newShown)
    , path(newShown)
{
    if (shown != standardStream) {
        return;
    }
    folder = std::make_unique<TemporaryFolder>();
    path = ToText(folder->GetPath() / nameForStream);
    KeepStandardInput(path);
}

} // namespace Tool
