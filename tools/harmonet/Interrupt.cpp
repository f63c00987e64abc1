#include "tools/harmonet/Interrupt.h"

#include <csignal>

namespace Tool
{

namespace
{

volatile std::sig_atomic_t interrupted = 0;

extern "C" void OnInterrupt(int signal)
{
    interrupted = 1;
    std::signal(signal, SIG_DFL);
}

} // namespace

void CatchInterrupt()
{
    std::signal(SIGINT, OnInterrupt);
    std::signal(SIGTERM, OnInterrupt);
}

bool IsInterrupted()
{
    return interrupted != 0;
}

} // namespace Tool
