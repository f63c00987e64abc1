#include "tools/harmonet/convert/TagRemoval.h"

#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"

#include <mpegfile.h>

#include <filesystem>

namespace Tool
{

void CopyWithoutTags(const InputFile& input, const OutputFile& output)
{
    namespace fs = std::filesystem;
    std::error_code error;
    fs::copy_file(
        ToPath(input.GetPath()), ToPath(output.GetPath()), fs::copy_options::overwrite_existing, error);
    // The copy of a read-only file is read-only, too.
    if (!error) {
        fs::permissions(ToPath(output.GetPath()), fs::perms::owner_write, fs::perm_options::add, error);
    }
    if (error) {
        throw ToolError("cannot write to " + output.GetShown() + ": " + error.message(), ExitCode::NoOutput);
    }

    TagLib::MPEG::File file(output.GetPath().c_str(), false);
    if (!file.isOpen() || !file.strip(TagLib::MPEG::File::AllTags)) {
        throw ToolError("cannot remove the tags from '" + input.GetShown() + "'", ExitCode::BadInput);
    }
    const auto firstFrame = file.firstFrameOffset();
    if (firstFrame < 0) {
        throw ToolError("'" + input.GetShown() + "' has no MPEG frames", ExitCode::BadInput);
    }
    if (firstFrame > 0) {
        file.removeBlock(0, static_cast<unsigned long>(firstFrame));
    }
}

} // namespace Tool
