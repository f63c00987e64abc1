#pragma once

#include "tools/harmonet/ToolError.h"
#include "tools/harmonet/convert/ConversionPlan.h"

namespace Tool
{

/// Tells the user what becomes of the files: a line for each that was converted, at the end how many there
/// were, and on a terminal a last line that shows how far it has come. As JSON a line for each file and
/// nothing else; and nothing but errors and warnings when a file goes to the standard output.
class ConversionReport
{
public:
    ConversionReport(const ConversionPlan& newPlan, bool newIsJson);

    void ShowProgress(const ConversionJob& job);
    void AddDone(const ConversionJob& job, const Conversion& done);
    void AddUnchanged(const ConversionJob& job);
    void AddPassedOver();
    void AddFailed(const ConversionJob& job, const ToolError& error);
    void End();

private:
    void Say(const std::string& line);

    const ConversionPlan& plan;
    bool isJson;
    bool isQuiet; ///< The standard output holds a sound.
    bool onTerminal;
    std::size_t looked = 0;
    std::size_t converted = 0;
    std::size_t unchanged = 0;
    std::size_t passedOver = 0;
    std::size_t failed = 0;
};

} // namespace Tool
