#include "tools/harmonet/convert/ConversionRecord.h"

#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"

#include <filesystem>
#include <fstream>

namespace Tool
{

namespace
{

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr const char* recordName = ".harmonet-convert.json";

/// Identifies the state of a file without reading it; null if the file does not exist.
Json Stamp(const std::string& path)
{
    std::error_code error;
    const fs::path file = ToPath(path);
    const auto bytes = fs::file_size(file, error);
    const auto time = error ? fs::file_time_type() : fs::last_write_time(file, error);
    return error ? Json() : Json{bytes, time.time_since_epoch().count()};
}

} // namespace

ConversionRecord::ConversionRecord(const std::string& folder, const ConversionSettings& settings)
    : settingsText(settings.ToText())
    , entries(Json::object())
{
    if (folder.empty()) {
        return;
    }
    path = ToText(ToPath(folder) / recordName);
    std::ifstream file{ToPath(path)};
    Json read = Json::parse(file, nullptr, false);
    if (read.is_object()) {
        entries = std::move(read);
    }
}

Json ConversionRecord::Describe(const ConversionJob& job) const
{
    return {{"input", ToText(ToPath(job.input).lexically_normal())}, {"inputStamp", Stamp(job.input)},
        {"outputStamp", Stamp(job.output)}, {"settings", settingsText}};
}

std::string ConversionRecord::NameOf(const ConversionJob& job) const
{
    return ToText(ToPath(job.output).lexically_relative(ToPath(path).parent_path()).generic_u8string());
}

bool ConversionRecord::IsUpToDate(const ConversionJob& job) const
{
    const auto entry = entries.find(NameOf(job));
    return !path.empty() && entry != entries.end() && !Stamp(job.input).is_null() && *entry == Describe(job);
}

void ConversionRecord::SetDone(const ConversionJob& job)
{
    entries[NameOf(job)] = Describe(job);
}

void ConversionRecord::Save() const
{
    if (path.empty()) {
        return;
    }
    constexpr int indent = 1;
    OutputFile output(path);
    std::ofstream file{ToPath(output.GetPath())};
    file << entries.dump(indent, ' ', false, Json::error_handler_t::replace) << '\n';
    file.close();
    if (!file) {
        throw ToolError("cannot write to '" + path + "'", ExitCode::NoOutput);
    }
    output.Commit();
}

} // namespace Tool
