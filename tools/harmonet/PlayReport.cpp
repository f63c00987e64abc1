#include "tools/harmonet/PlayReport.h"

#include "harmonet/engine/PString.h"
#include "tools/harmonet/Console.h"
#include "tools/harmonet/Output.h"
#include "tools/harmonet/SoundData.h"

namespace Tool
{

namespace
{

constexpr const char* clearLine = "\r\033[K";

} // namespace

PlayReport::PlayReport()
    : onTerminal(IsTerminal())
{
}

std::string PlayReport::FindName(int soundID) const
{
    const auto found = names.find(soundID);
    return found != names.end() ? found->second : std::string();
}

std::string PlayReport::GetLastEvent() const
{
    if (events.empty()) {
        return {};
    }
    const std::size_t end = events.size() - 1;
    const std::size_t before = end > 0 ? events.rfind('\n', end - 1) : std::string::npos;
    const std::size_t begin = before == std::string::npos ? 0 : before + 1;
    return events.substr(begin, end - begin);
}

void PlayReport::ShowEvents()
{
    if (!events.empty()) {
        Print((onTerminal ? clearLine : "") + events);
    }
    events.clear();
    FlushOutput();
}

void PlayReport::ShowProgress(unsigned long playedMs)
{
    ShowEvents();
    if (!onTerminal) {
        return;
    }
    Print(clearLine + DescribeTime(playedMs) + ", " + std::to_string(running) + " playing");
    FlushOutput();
}

void PlayReport::OnSoundBegin(int soundID, const Quon::PString&)
{
    // The sources of a line begin but are not reported as ended. Only the line counts.
    if (!names.contains(soundID)) {
        return;
    }
    ++running;
    AddEvent("started", soundID);
}

void PlayReport::OnSoundEnd(int soundID, const Quon::PString&)
{
    --unfinished;
    --running;
    AddEvent("ended", soundID);
}

void PlayReport::OnSoundAbort(int soundID, const Quon::PString&, int remaining)
{
    --unfinished;
    --running;
    const bool hasEnd = remaining >= 0;
    AddEvent("cut off", soundID,
        hasEnd ? " with " + DescribeTime(static_cast<unsigned long>(remaining)) + " left" : std::string());
}

void PlayReport::AddEvent(const char* what, int soundID, const std::string& detail)
{
    events += std::string(what) + ' ' + names[soundID] + detail + '\n';
}

} // namespace Tool
