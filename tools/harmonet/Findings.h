#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace Tool
{

/// Something that the author of a definition should check.
struct Finding
{
    int line; ///< 0 for the whole file.
    bool isError; ///< Something is unreadable, missing or ignored. Otherwise it is only suspicious.
    std::string text;
};

struct Count
{
    int errors = 0;
    int warnings = 0;
};

Count CountFindings(const std::vector<Finding>& findings);

/// Prints each finding and their number. Each line starts with the name of the definition.
void PrintFindings(const std::string& path, const std::vector<Finding>& findings);
/// Returns an array of objects with "line", "severity" and "text".
nlohmann::ordered_json ToJson(const std::vector<Finding>& findings);
void PrintFindingsAsJson(const std::string& path, const std::vector<Finding>& findings);

} // namespace Tool
