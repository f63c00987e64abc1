#include "tools/trace/Wording.h"

#include "harmonet/kernel/SoundSystem.h"

namespace Trace
{

std::string NameOf(const Quon::SoundState& state)
{
    std::string name(state.definition.IsEmpty() ? state.fileName.GetView() : state.definition.GetView());
    if (name.empty()) {
        name = "in memory";
    }
    return state.kind == Quon::SoundKind::LineSource ? name + ", source" : name;
}

const char* DescribeKind(Quon::SoundKind kind)
{
    switch (kind) {
    case Quon::SoundKind::NonPositional:
        return "non-positional";
    case Quon::SoundKind::Positional:
        return "positional";
    case Quon::SoundKind::Line:
        return "along a line";
    case Quon::SoundKind::LineSource:
        return "source of a line";
    case Quon::SoundKind::Music:
        return "music";
    }
    return "unknown";
}

const char* NameOfPhase(const Quon::SoundState& state)
{
    switch (state.phase) {
    case Quon::SoundPhase::Heard:
        return state.isFadingOut ? "fading" : "heard";
    case Quon::SoundPhase::Virtual:
        return "virtual";
    case Quon::SoundPhase::Prepared:
    case Quon::SoundPhase::Waiting:
        break;
    }
    return "waiting";
}

std::string DescribeState(const Quon::SoundState& state)
{
    const std::string phase = NameOfPhase(state);
    return state.reason == Quon::SoundReason::None ? phase
                                                   : phase + ": " + Quon::DescribeReason(state.reason);
}

const char* DescribeEnd(const Quon::SoundState& state)
{
    switch (state.reason) {
    case Quon::SoundReason::TooShort:
    case Quon::SoundReason::NotEmulated:
    case Quon::SoundReason::Refused:
        return Quon::DescribeReason(state.reason);
    default:
        return nullptr;
    }
}

Clock::Clock()
    : last(Quon::SoundSystem::GetClockMs())
{
}

std::int64_t Clock::GetMs()
{
    const std::uint32_t now = Quon::SoundSystem::GetClockMs();
    sum += now - last;
    last = now;
    return sum;
}

} // namespace Trace
