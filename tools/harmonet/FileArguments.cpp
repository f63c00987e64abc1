#include "tools/harmonet/FileArguments.h"

#include "harmonet/engine/File.h"
#include "tools/harmonet/Format.h"
#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"

#include <algorithm>
#include <filesystem>

namespace Tool
{

namespace
{

namespace fs = std::filesystem;

fs::path Canonical(const std::string& shown)
{
    std::error_code error;
    fs::path path = fs::canonical(ToPath(shown), error);
    if (error == std::errc::no_such_file_or_directory) {
        throw ToolError("there is no file '" + shown + "'", ExitCode::NoInput);
    }
    if (error) {
        throw ToolError("cannot access '" + shown + "': " + error.message(), ExitCode::NoInput);
    }
    return path;
}

fs::path CommonFolder(const fs::path& left, const fs::path& right)
{
    fs::path common;
    const auto [leftEnd, rightEnd] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    for (auto part = left.begin(); part != leftEnd; ++part) {
        common /= *part;
    }
    return common;
}

void CheckReadable(const FileArguments::File& file)
{
    Quon::File opened;
    const Quon::Result result = opened.Open(Quon::PString(), file.name.GetText(), Quon::File::modeRead);
    if (!result.IsOk()) {
        throw ToolError("'" + file.shown + "' " + FormatOpenCode(result.GetCode()), ExitCode::NoInput);
    }
}

} // namespace

FileArguments::FileArguments(const std::vector<std::string>& paths)
{
    std::vector<fs::path> found;
    found.reserve(paths.size());
    for (const std::string& shown : paths) {
        inputs.push_back(std::make_unique<InputFile>(shown, "stdin"));
        found.push_back(Canonical(inputs.back()->GetPath()));
    }

    fs::path root = found.front().parent_path();
    for (const fs::path& path : found) {
        root = CommonFolder(root, path.parent_path());
    }
    if (!Quon::File::AddRoot(Quon::PString(), ToText(root).c_str())) {
        throw ToolError("cannot access the folder '" + ToText(root) + "'", ExitCode::NoInput);
    }

    for (std::size_t i = 0; i < paths.size(); ++i) {
        files.push_back(
            {paths[i], Quon::PString(ToText(found[i].lexically_relative(root).generic_u8string()).c_str())});
        CheckReadable(files.back());
    }
}

} // namespace Tool
