#pragma once

#include "tools/harmonet/convert/ConversionPlan.h"

#include <nlohmann/json.hpp>

namespace Tool
{

/// Records what was converted into a folder, from which files and with which settings, so that the next run
/// converts only what has changed. It is stored in the folder as a hidden file. An unreadable record is
/// treated as empty.
class ConversionRecord
{
public:
    /// If `folder` is empty, nothing is recorded.
    ConversionRecord(const std::string& folder, const ConversionSettings& settings);

    /// Returns whether the input, the output and the settings are unchanged since the last conversion.
    bool IsUpToDate(const ConversionJob& job) const;
    void SetDone(const ConversionJob& job);
    /// Throws a ToolError if the file cannot be written.
    void Save() const;

private:
    /// Returns the path of the output relative to the folder.
    std::string NameOf(const ConversionJob& job) const;
    nlohmann::json Describe(const ConversionJob& job) const;

    std::string path; ///< Empty for none.
    std::string settingsText;
    nlohmann::json entries;
};

} // namespace Tool
