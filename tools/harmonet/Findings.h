#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace Tool
{

/// Something that whoever wrote a definition should look at.
struct Finding
{
    int line; ///< 0 for the file as a whole.
    bool isError; ///< Something is not read, not there or not heeded. Else it is only odd.
    std::string text;
};

struct Count
{
    int errors = 0;
    int warnings = 0;
};

Count CountFindings(const std::vector<Finding>& findings);

/// Prints each finding and how many there are, with the definition's name at the head of each line.
void PrintFindings(const std::string& path, const std::vector<Finding>& findings);
/// An array of objects with "line", "severity" and "text".
nlohmann::ordered_json ToJson(const std::vector<Finding>& findings);
void PrintFindingsAsJson(const std::string& path, const std::vector<Finding>& findings);

} // namespace Tool
