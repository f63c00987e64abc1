#pragma once

#include "tools/harmonet/OutputFile.h"
#include "tools/trace/Timeline.h"
#include "tools/trace/TraceFanout.h"
#include "tools/trace/TraceWriter.h"

#include <fstream>
#include <memory>
#include <optional>
#include <string>

namespace Tool
{

/// Records what happens to sounds into the files that were asked for: trace events, a timeline, both or none.
/// Attaches itself to the sound system, and ends before it.
class TraceOutput
{
public:
    /// An empty path is none. Throws a ToolError if a file cannot be written.
    TraceOutput(const std::string& tracePath, const std::string& timelinePath);

    /// Puts the files in place. The sounds should have ended. Throws a ToolError when that fails.
    void Commit();

private:
    std::optional<OutputFile> traceFile;
    std::ofstream traceStream;
    std::unique_ptr<Trace::TraceWriter> trace;
    std::optional<OutputFile> timelineFile;
    std::unique_ptr<Trace::Timeline> timeline;
    Trace::TraceFanout fanout;
};

} // namespace Tool
