#pragma once

#include "tools/harmonet/ToolError.h"
#include "tools/harmonet/convert/ConversionPlan.h"

namespace Tool
{

/// Reports a conversion run: a line for each converted file, a summary at the end and, on a terminal, a
/// progress line. As JSON it prints one line for each file and nothing else. If a sound goes to standard
/// output, it prints only errors and warnings.
class ConversionReport
{
public:
    ConversionReport(const ConversionPlan& newPlan, bool newIsJson);

    void ShowProgress(const ConversionJob& job);
    void AddDone(const ConversionJob& job, const Conversion& done);
    void AddUnchanged(const ConversionJob& job);
    void AddSkipped();
    void AddFailed(const ConversionJob& job, const ToolError& error);
    void End();

private:
    void Say(const std::string& line);

    const ConversionPlan& plan;
    bool isJson;
    bool isQuiet; ///< Standard output carries a sound.
    bool onTerminal;
    std::size_t processed = 0;
    std::size_t converted = 0;
    std::size_t unchanged = 0;
    std::size_t skipped = 0;
    std::size_t failed = 0;
};

} // namespace Tool
