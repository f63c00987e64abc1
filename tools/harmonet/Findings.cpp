#include "tools/harmonet/Findings.h"

#include "tools/harmonet/Output.h"

#include <nlohmann/json.hpp>

namespace Tool
{

namespace
{

const char* Severity(const Finding& finding)
{
    return finding.isError ? "error" : "warning";
}

std::string Describe(const Count& count)
{
    const auto name = [](int number, const char* what) {
        return std::to_string(number) + ' ' + what + (number == 1 ? "" : "s");
    };
    if (count.errors == 0 && count.warnings == 0) {
        return "good";
    }
    return name(count.errors, "error") + ", " + name(count.warnings, "warning");
}

} // namespace

Count CountFindings(const std::vector<Finding>& findings)
{
    Count count;
    for (const Finding& finding : findings) {
        ++(finding.isError ? count.errors : count.warnings);
    }
    return count;
}

void PrintFindings(const std::string& path, const std::vector<Finding>& findings)
{
    for (const Finding& finding : findings) {
        const std::string place = finding.line > 0 ? ':' + std::to_string(finding.line) : std::string();
        Print(path + place + ": " + Severity(finding) + ": " + finding.text + '\n');
    }
    Print(path + ": " + Describe(CountFindings(findings)) + '\n');
}

nlohmann::ordered_json ToJson(const std::vector<Finding>& findings)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Finding& finding : findings) {
        list.push_back({{"line", finding.line}, {"severity", Severity(finding)}, {"text", finding.text}});
    }
    return list;
}

void PrintFindingsAsJson(const std::string& path, const std::vector<Finding>& findings)
{
    const Count count = CountFindings(findings);
    PrintJson({{"file", path}, {"errors", count.errors}, {"warnings", count.warnings},
        {"findings", ToJson(findings)}});
}

} // namespace Tool
