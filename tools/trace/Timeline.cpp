#include "tools/trace/Timeline.h"

#include "harmonet/kernel/SoundSystem.h"
#include "tools/trace/Page.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <ostream>

namespace Trace
{

namespace
{

using Quon::SoundKind;

constexpr std::string_view dataMark = "/*DATA*/";

// Rounds to a hundredth of a unit, the resolution of the map.
double Round(float coordinate)
{
    return std::isfinite(coordinate) ? std::round(static_cast<double>(coordinate) * 100.0) / 100.0 : 0.0;
}

// Text inside a script element must not contain its end tag.
std::string EscapeForScript(const nlohmann::json& value)
{
    std::string text;
    for (const char c : value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)) {
        if (c == '<') {
            text += "\\u003c";
        }
        else {
            text += c;
        }
    }
    return text;
}

} // namespace

void Timeline::OnStart(const Quon::SoundState& state)
{
    rowOf[state.id] = rows.size();
    rows.push_back(
        {state.id, NameOf(state), DescribeKind(state.kind), state.priority, clock.GetMs(), -1, "", {}, {}});
    AddState(rows.back(), state);
}

void Timeline::OnChange(const Quon::SoundState& state)
{
    if (const auto found = rowOf.find(state.id); found != rowOf.end()) {
        AddState(rows[found->second], state);
    }
}

void Timeline::OnEnd(const Quon::SoundState& state)
{
    const auto found = rowOf.find(state.id);
    if (found == rowOf.end()) {
        return;
    }
    Row& row = rows[found->second];
    row.endMs = clock.GetMs();
    if (const char* const reason = DescribeEnd(state)) {
        row.outcome = std::string("cut off: ") + reason;
    }
    rowOf.erase(found);
}

void Timeline::OnNotice(Quon::SoundNotice notice, int soundID, const Quon::PString&)
{
    const auto found = rowOf.find(soundID);
    if (found == rowOf.end()) {
        return;
    }
    if (notice == Quon::SoundNotice::End) {
        rows[found->second].outcome = "ended";
    }
    else if (notice == Quon::SoundNotice::Abort) {
        rows[found->second].outcome = "cut off";
    }
}

void Timeline::OnUpdate(const Quon::UpdateRecord& record)
{
    const std::int64_t nowMs = clock.GetMs();
    const double costUs = std::round(std::chrono::duration<double, std::micro>(record.cost).count());
    for (const double number : {static_cast<double>(nowMs), static_cast<double>(record.numHeard),
             static_cast<double>(record.numVirtual), static_cast<double>(record.numWaiting), costUs}) {
        updates.push_back(number);
    }
    maxAudible = record.maxAudible;
    if (record.hasListener) {
        AddPlace(listener, nowMs, record.listener);
    }
    snapshot.resize(std::max(snapshot.size(), Quon::SoundSystem::Inspect({})));
    const std::size_t count = Quon::SoundSystem::Inspect(snapshot);
    for (const Quon::SoundState& state : std::span(snapshot).first(count)) {
        const bool isPlaced = state.kind == SoundKind::Positional || state.kind == SoundKind::LineSource;
        if (const auto found = rowOf.find(state.id); isPlaced && found != rowOf.end()) {
            AddPlace(rows[found->second].places, nowMs, state.place);
        }
    }
}

void Timeline::AddState(Row& row, const Quon::SoundState& state)
{
    const std::string words = DescribeState(state);
    const auto [found, isNew] = lookOf.emplace(words, static_cast<std::int64_t>(looks.size()));
    if (isNew) {
        looks.push_back({NameOfPhase(state), words});
    }
    row.states.push_back(clock.GetMs());
    row.states.push_back(found->second);
}

void Timeline::AddPlace(std::vector<double>& places, std::int64_t atMs, const Quon::Vector3& place)
{
    const double x = Round(place.x);
    const double z = Round(place.z);
    const std::size_t size = places.size();
    if (size > 0 && places[size - 2] == x && places[size - 1] == z) {
        return;
    }
    places.insert(places.end(), {static_cast<double>(atMs), x, z});
}

void Timeline::WritePage(std::ostream& out)
{
    const std::int64_t nowMs = clock.GetMs();
    nlohmann::json data = {{"durationMs", nowMs}, {"maxAudible", maxAudible}, {"updates", updates},
        {"listener", listener}, {"states", nlohmann::json::array()}, {"sounds", nlohmann::json::array()}};
    for (const Look& look : looks) {
        data["states"].push_back({{"look", look.name}, {"words", look.words}});
    }
    for (const Row& row : rows) {
        data["sounds"].push_back({{"id", row.id}, {"name", row.name}, {"kind", row.kind},
            {"priority", row.priority}, {"start", row.startMs}, {"end", row.endMs < 0 ? nowMs : row.endMs},
            {"outcome", row.outcome}, {"states", row.states}, {"places", row.places}});
    }
    const std::string_view page = GetPage();
    const std::size_t at = page.find(dataMark);
    out << page.substr(0, at) << EscapeForScript(data) << page.substr(at + dataMark.size());
}

} // namespace Trace
