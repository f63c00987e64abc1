#include "tools/trace/TraceWriter.h"

#include <nlohmann/json.hpp>
#include <ostream>

namespace Trace
{

namespace
{

// The trace event format: times are in microseconds, and events of one kind share a "thread".
constexpr int usPerMs = 1000;
constexpr int process = 1;
constexpr int updateThread = 1;
constexpr int noticeThread = 2;
constexpr int soundThread = 3;

const char* NameOfNotice(Quon::SoundNotice notice)
{
    switch (notice) {
    case Quon::SoundNotice::Begin:
        return "OnSoundBegin";
    case Quon::SoundNotice::Abort:
        return "OnSoundAbort";
    case Quon::SoundNotice::End:
        return "OnSoundEnd";
    case Quon::SoundNotice::BufferFree:
        return "OnBufferFree";
    }
    return "unknown";
}

nlohmann::json Event(const char* phase, const std::string& name, int thread, std::int64_t atMs)
{
    return {{"ph", phase}, {"name", name}, {"pid", process}, {"tid", thread}, {"ts", atMs * usPerMs}};
}

nlohmann::json ArgumentsOf(const Quon::SoundState& state)
{
    return {{"file", state.fileName.GetView()}, {"kind", DescribeKind(state.kind)},
        {"reason", Quon::DescribeReason(state.reason)}, {"priority", state.priority},
        {"distance", state.distance}, {"multiplier", state.multiplier}, {"gain", state.gain},
        {"positionMs", state.positionMs}, {"x", state.place.x}, {"y", state.place.y}, {"z", state.place.z}};
}

} // namespace

TraceWriter::TraceWriter(std::ostream& newOut)
    : out(newOut)
{
    for (const auto& [thread, name] : {std::pair{updateThread, "full updates"},
             std::pair{noticeThread, "notifications"}, std::pair{soundThread, "sounds"}}) {
        nlohmann::json event = Event("M", "thread_name", thread, 0);
        event["args"] = {{"name", name}};
        Write(event);
    }
}

TraceWriter::~TraceWriter()
{
    try {
        for (const auto& [id, sound] : open) {
            Finish(id, sound.state, clock.GetMs());
            Finish(id, sound.name, clock.GetMs());
        }
        out << "\n]\n";
    }
    catch (...) {
        // Out of memory. The file lacks its end, which readers of trace events tolerate.
    }
}

void TraceWriter::OnStart(const Quon::SoundState& state)
{
    open[state.id] = {NameOf(state), DescribeState(state)};
    Begin(state, open[state.id].name);
    Begin(state, open[state.id].state);
}

void TraceWriter::OnChange(const Quon::SoundState& state)
{
    std::string& before = open[state.id].state;
    Finish(state.id, before, clock.GetMs());
    before = DescribeState(state);
    Begin(state, before);
}

void TraceWriter::OnEnd(const Quon::SoundState& state)
{
    const Open& sound = open[state.id];
    Finish(state.id, sound.state, clock.GetMs());
    Finish(state.id, sound.name, clock.GetMs(), DescribeEnd(state));
    open.erase(state.id);
}

void TraceWriter::OnNotice(Quon::SoundNotice notice, int soundID, const Quon::PString& fileName)
{
    nlohmann::json event = Event("i", NameOfNotice(notice), noticeThread, clock.GetMs());
    event["s"] = "t";
    event["args"] = {{"id", soundID}, {"file", fileName.GetView()}};
    Write(event);
}

void TraceWriter::OnUpdate(const Quon::UpdateRecord& record)
{
    const double costUs = std::chrono::duration<double, std::micro>(record.cost).count();
    nlohmann::json event = Event("X", "full update", updateThread, clock.GetMs());
    event["dur"] = costUs;
    event["args"] = {{"elapsedMs", record.elapsedMs}, {"maxAudible", record.maxAudible}};
    Write(event);
    nlohmann::json counts = Event("C", "sounds", updateThread, clock.GetMs());
    counts["args"] = {
        {"heard", record.numHeard}, {"virtual", record.numVirtual}, {"waiting", record.numWaiting}};
    Write(counts);
}

void TraceWriter::Begin(const Quon::SoundState& state, const std::string& name)
{
    nlohmann::json event = Event("b", name, soundThread, clock.GetMs());
    event["cat"] = "sound";
    event["id"] = state.id;
    event["args"] = ArgumentsOf(state);
    Write(event);
}

void TraceWriter::Finish(int id, const std::string& name, std::int64_t atMs, const char* reason)
{
    nlohmann::json event = Event("e", name, soundThread, atMs);
    event["cat"] = "sound";
    event["id"] = id;
    if (reason) {
        event["args"] = {{"end", reason}};
    }
    Write(event);
}

// Invalid UTF-8, for example in a file name, is replaced.
void TraceWriter::Write(const nlohmann::json& event)
{
    out << (isFirst ? "[\n" : ",\n") << event.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    isFirst = false;
}

} // namespace Trace
