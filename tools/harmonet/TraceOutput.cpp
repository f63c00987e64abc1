#include "tools/harmonet/TraceOutput.h"

#include "harmonet/kernel/SoundSystem.h"
#include "tools/harmonet/Output.h"
#include "tools/harmonet/PathText.h"

#include <cerrno>

namespace Tool
{

namespace
{

void Check(const std::ofstream& stream, const OutputFile& file)
{
    if (!stream) {
        throw WriteError("'" + file.GetShown() + "'", errno);
    }
}

void Close(std::ofstream& stream, OutputFile& file)
{
    stream.close();
    Check(stream, file);
    file.Commit();
}

} // namespace

TraceOutput::TraceOutput(const std::string& tracePath, const std::string& timelinePath)
{
    if (!tracePath.empty()) {
        traceFile.emplace(tracePath);
        traceStream.open(ToPath(traceFile->GetPath()), std::ios::binary);
        Check(traceStream, *traceFile);
        trace = std::make_unique<Trace::TraceWriter>(traceStream);
        fanout.Add(*trace);
    }
    if (!timelinePath.empty()) {
        timelineFile.emplace(timelinePath);
        Check(std::ofstream(ToPath(timelineFile->GetPath()), std::ios::binary), *timelineFile);
        timeline = std::make_unique<Trace::Timeline>();
        fanout.Add(*timeline);
    }
    if (!fanout.IsEmpty()) {
        Quon::SoundSystem::SetTrace(&fanout);
    }
}

void TraceOutput::Commit()
{
    Quon::SoundSystem::SetTrace(nullptr);
    if (trace) {
        trace.reset();
        Close(traceStream, *traceFile);
    }
    if (timeline) {
        std::ofstream stream(ToPath(timelineFile->GetPath()), std::ios::binary);
        timeline->WritePage(stream);
        Close(stream, *timelineFile);
    }
}

} // namespace Tool
