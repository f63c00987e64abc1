#include "tools/harmonet/PlayReport.h"

#include "harmonet/engine/PString.h"
#include "tools/harmonet/Console.h"
#include "tools/harmonet/SoundData.h"

#include <cstdio>

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

void PlayReport::ExpectSound(const Quon::PString& fileName, const std::string& shown)
{
    ++unfinished;
    names[std::string(fileName.GetView())] = shown;
}

void PlayReport::ShowProgress(unsigned long playedMs)
{
    if (!onTerminal)
        return;
    std::printf("%s%s, %d playing", clearLine, DescribeTime(playedMs).c_str(), running);
    std::fflush(stdout);
}

void PlayReport::OnSoundBegin(int, const Quon::PString& fileName)
{
    ++running;
    PrintEvent("started", fileName);
}

void PlayReport::OnSoundEnd(int, const Quon::PString& fileName)
{
    --unfinished;
    --running;
    PrintEvent("ended", fileName);
}

void PlayReport::OnSoundAbort(int, const Quon::PString& fileName, int remaining)
{
    --unfinished;
    --running;
    const bool hasEnd = remaining >= 0;
    PrintEvent("cut off", fileName,
        hasEnd ? " with " + DescribeTime(static_cast<unsigned long>(remaining)) + " left" : std::string());
}

void PlayReport::PrintEvent(const char* what, const Quon::PString& fileName, const std::string& detail)
{
    std::printf("%s%s %s%s\n", onTerminal ? clearLine : "", what,
        names[std::string(fileName.GetView())].c_str(), detail.c_str());
    std::fflush(stdout);
}

} // namespace Tool
