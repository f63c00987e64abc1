#include "tools/harmonet/OutputFile.h"

#include "harmonet/engine/HostFile.h"
#include "tools/harmonet/BinaryStream.h"
#include "tools/harmonet/Console.h"
#include "tools/harmonet/InputFile.h"
#include "tools/harmonet/Output.h"
#include "tools/harmonet/PathText.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace Tool
{

namespace
{

namespace fs = std::filesystem;

constexpr const char* partEnding = ".part";

/// Returns the path that a file of that name is written to: the target, if it is a symbolic link.
std::string Target(const std::string& shown)
{
    std::error_code error;
    const fs::path target = fs::canonical(ToPath(shown), error);
    return error ? shown : ToText(target);
}

struct Close
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

bool IsDevice(const fs::path& path)
{
    std::error_code error;
    return fs::exists(path, error) && !fs::is_regular_file(path, error);
}

} // namespace

OutputFile::OutputFile(const std::string& newShown)
    : shown(newShown)
{
    if (shown == standardStream) {
        folder = std::make_unique<TemporaryFolder>();
        path = ToText(folder->GetPath() / "output");
    }
    else {
        path = IsDevice(ToPath(shown)) ? shown : Target(shown) + partEnding;
    }
}

OutputFile::~OutputFile()
{
    std::error_code ignored;
    if (!path.empty() && path != shown) {
        fs::remove(ToPath(path), ignored);
    }
}

std::string OutputFile::GetShown() const
{
    return IsStream() ? "standard output" : '\'' + shown + '\'';
}

void OutputFile::Commit()
{
    if (IsStream()) {
        CopyToStream();
    }
    else if (path != shown) {
        std::error_code error;
        fs::rename(ToPath(path), ToPath(Target(shown)), error);
        if (error) {
            throw ToolError("cannot write to " + GetShown() + ": " + error.message(), ExitCode::NoOutput);
        }
        path.clear();
    }
}

void OutputFile::CopyToStream() const
{
    std::FILE* const written = Quon::OpenHostFile(path.c_str(), "rb");
    if (!written) {
        throw WriteError(GetShown(), errno);
    }
    const std::unique_ptr<std::FILE, Close> closing(written);
    CopyStream(written, "a temporary file", UseBinary(stdout), GetShown());
}

} // namespace Tool
