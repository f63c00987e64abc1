#include "tools/harmonet/Interrupt.h"

#include <atomic>
#include <csignal>

namespace Tool
{

namespace
{

/// Publishes no other data. A signal may arrive on any thread.
std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler must not wait");

extern "C" void OnInterrupt(int signal)
{
    interrupted = true;
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
    return interrupted;
}

} // namespace Tool
