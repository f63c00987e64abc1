#pragma once

#include "harmonet/kernel/SoundTrace.h"

#include <vector>

namespace Trace
{

/// Forwards each call to several traces. The caller owns them; they must outlive this object.
class TraceFanout final : public Quon::SoundTrace
{
public:
    void Add(Quon::SoundTrace& trace) { traces.push_back(&trace); }
    bool IsEmpty() const { return traces.empty(); }

    void OnStart(const Quon::SoundState& state) override
    {
        for (SoundTrace* trace : traces) {
            trace->OnStart(state);
        }
    }
    void OnChange(const Quon::SoundState& state) override
    {
        for (SoundTrace* trace : traces) {
            trace->OnChange(state);
        }
    }
    void OnEnd(const Quon::SoundState& state) override
    {
        for (SoundTrace* trace : traces) {
            trace->OnEnd(state);
        }
    }
    void OnNotice(Quon::SoundNotice notice, int soundID, const Quon::PString& fileName) override
    {
        for (SoundTrace* trace : traces) {
            trace->OnNotice(notice, soundID, fileName);
        }
    }
    void OnUpdate(const Quon::UpdateRecord& record) override
    {
        for (SoundTrace* trace : traces) {
            trace->OnUpdate(record);
        }
    }

private:
    std::vector<SoundTrace*> traces;
};

} // namespace Trace
