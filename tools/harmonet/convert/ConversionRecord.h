#pragma once

#include "tools/harmonet/convert/ConversionPlan.h"

#include <nlohmann/json.hpp>

namespace Tool
{

/// What has been converted into a folder, from which files and how, so that another run only does what has
/// changed. Lies in the folder as a hidden file. A record that cannot be read counts as an empty one.
class ConversionRecord
{
public:
    /// An empty folder is none, and then nothing is recorded.
    ConversionRecord(const std::string& folder, const ConversionSettings& settings);

    /// Whether the input, the output and the settings are as they were when it was last converted.
    bool IsUpToDate(const ConversionJob& job) const;
    void SetDone(const ConversionJob& job);
    /// Throws a ToolError when the folder does not take it.
    void Save() const;

private:
    /// The output, below the folder.
    std::string NameOf(const ConversionJob& job) const;
    nlohmann::json Describe(const ConversionJob& job) const;

    std::string path; ///< Empty for none.
    std::string settingsText;
    nlohmann::json entries;
};

} // namespace Tool
