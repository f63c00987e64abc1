#include "tools/harmonet/top/TopTable.h"

#include "harmonet/kernel/SoundSystem.h"
#include "tools/harmonet/PlayReport.h"
#include "tools/trace/Wording.h"

#include <algorithm>
#include <cctype>
#include <tuple>

namespace Tool
{

namespace
{

using Quon::SoundPhase;
using Quon::SoundState;

int RankOf(SoundPhase phase)
{
    switch (phase) {
    case SoundPhase::Heard:
        return 0;
    case SoundPhase::Virtual:
        return 1;
    case SoundPhase::Waiting:
        return 2;
    case SoundPhase::Prepared:
        break;
    }
    return 3;
}

char ToLower(char letter)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
}

bool Holds(const std::string& text, const std::string& part)
{
    const auto isSame = [](char a, char b) { return ToLower(a) == ToLower(b); };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), isSame) != text.end();
}

std::string WithoutControls(std::string text)
{
    const auto isControl = [](char letter) { return std::iscntrl(static_cast<unsigned char>(letter)) != 0; };
    std::replace_if(text.begin(), text.end(), isControl, '?');
    return text;
}

} // namespace

void TopTable::SortBy(Column newColumn)
{
    isReverse = newColumn == column && !isReverse;
    column = newColumn;
}

void TopTable::Update(const PlayReport& report)
{
    snapshot.resize(std::max(snapshot.size(), Quon::SoundSystem::Inspect({})));
    const std::size_t count = Quon::SoundSystem::Inspect(snapshot);
    counts = {};
    rows.clear();
    for (const SoundState& state : std::span(snapshot).first(count)) {
        Count(state);
        std::string name = report.FindName(state.id);
        Row row{state, WithoutControls(name.empty() ? Trace::NameOf(state) : std::move(name))};
        if (IsShown(row)) {
            rows.push_back(std::move(row));
        }
    }
    std::sort(rows.begin(), rows.end(),
        [this](const Row& a, const Row& b) { return isReverse ? IsBefore(b, a) : IsBefore(a, b); });
}

void TopTable::Count(const SoundState& state)
{
    if (state.kind == Quon::SoundKind::Line) {
        return;
    }
    counts.heard += state.phase == SoundPhase::Heard ? 1 : 0;
    counts.isVirtual += state.phase == SoundPhase::Virtual ? 1 : 0;
    counts.waiting += state.phase == SoundPhase::Waiting ? 1 : 0;
}

bool TopTable::IsShown(const Row& row) const
{
    const SoundPhase phase = row.state.phase;
    const bool isAskedFor = show == Show::All || (show == Show::Heard && phase == SoundPhase::Heard) ||
        (show == Show::Virtual && phase == SoundPhase::Virtual) ||
        (show == Show::Waiting && phase == SoundPhase::Waiting);
    return isAskedFor && Holds(row.name, search);
}

// Sounds with equal values in the column keep their order between updates.
bool TopTable::IsBefore(const Row& a, const Row& b) const
{
    const SoundState& first = a.state;
    const SoundState& second = b.state;
    switch (column) {
    case Column::State:
        return std::tuple(RankOf(first.phase), -std::int64_t{first.priority}, first.distance, first.id) <
            std::tuple(RankOf(second.phase), -std::int64_t{second.priority}, second.distance, second.id);
    case Column::Priority:
        return std::tuple(-std::int64_t{first.priority}, first.id) <
            std::tuple(-std::int64_t{second.priority}, second.id);
    case Column::Distance:
        return std::tuple(first.distance, first.id) < std::tuple(second.distance, second.id);
    case Column::Gain:
        return std::tuple(-first.gain, first.id) < std::tuple(-second.gain, second.id);
    case Column::Age:
        return std::tuple(first.ageMs, first.id) < std::tuple(second.ageMs, second.id);
    case Column::Name:
        break;
    }
    return std::tie(a.name, first.id) < std::tie(b.name, second.id);
}

} // namespace Tool
