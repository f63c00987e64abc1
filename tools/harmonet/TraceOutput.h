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

/// Records the sounds to the requested files: trace events, a timeline, both or none. Attaches itself to the
/// sound system, which must outlive it.
class TraceOutput
{
public:
    /// An empty path disables that file. Throws a ToolError if a file cannot be written.
    TraceOutput(const std::string& tracePath, const std::string& timelinePath);

    /// Moves the files to their destinations. Call after the sounds have ended. Throws a ToolError on
    /// failure.
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
