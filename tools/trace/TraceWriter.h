#pragma once

#include "harmonet/kernel/SoundTrace.h"
#include "tools/trace/Wording.h"

#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <unordered_map>

namespace Trace
{

/// Writes trace events, which ui.perfetto.dev and chrome://tracing open: a track for each sound with its
/// states, the full updates with their durations, and the notifications.
///
/// Each event is written immediately. Memory use grows with the number of existing sounds, not with time.
class TraceWriter final : public Quon::SoundTrace
{
public:
    /// Writes to `newOut`, which must outlive this object. The caller checks it for errors.
    explicit TraceWriter(std::ostream& newOut);
    /// Completes the file.
    ~TraceWriter() override;

    void OnStart(const Quon::SoundState& state) override;
    void OnChange(const Quon::SoundState& state) override;
    void OnEnd(const Quon::SoundState& state) override;
    void OnNotice(Quon::SoundNotice notice, int soundID, const Quon::PString& fileName) override;
    void OnUpdate(const Quon::UpdateRecord& record) override;

private:
    struct Open
    {
        std::string name;
        std::string state;
    };

    void Begin(const Quon::SoundState& state, const std::string& name);
    void Finish(int id, const std::string& name, std::int64_t atMs, const char* reason = nullptr);
    void Write(const nlohmann::json& event);

    std::ostream& out;
    Clock clock;
    bool isFirst = true;
    std::unordered_map<int, Open> open; ///< The existing sounds.
};

} // namespace Trace
