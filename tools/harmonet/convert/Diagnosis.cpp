#include "tools/harmonet/convert/Diagnosis.h"

#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"
#include "tools/harmonet/convert/SoundReader.h"

#include <filesystem>

namespace Tool
{

namespace
{

/// Returns a name for the converted file that differs from `path`.
std::string SuggestOutput(const std::string& path, const char* ending)
{
    const std::filesystem::path file = ToPath(path);
    if (path == standardStream) {
        return standardStream;
    }
    if (file.extension() != ending) {
        return ToText(std::filesystem::path(file).replace_extension(ending));
    }
    return ToText(file.parent_path() / ToPath(ToText(file.stem()) + "-converted" + ending));
}

} // namespace

std::string DescribeRemedy(const std::string& path)
{
    std::unique_ptr<SoundReader> reader;
    try {
        // Standard input has already been read.
        reader = path == standardStream ? nullptr : SoundReader::Open(InputFile(path, ""));
    }
    catch (const ToolError&) {
        return "";
    }
    if (!reader) {
        return "";
    }
    const bool isMpeg = reader->IsMpegLayer3();
    const std::string what = isMpeg ? "MPEG Layer III after a tag or other bytes" : reader->Describe();
    return "; it is " + what + ", and `harmonet convert '" + path + "' '" +
        SuggestOutput(path, isMpeg ? ".mp3" : ".wav") + "'` creates a file that plays";
}

} // namespace Tool
