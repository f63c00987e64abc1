#include "harmonet/engine/Messages.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <utility>

namespace Quon
{

namespace
{

/// Atomic, so that AreWanted() can be called from other threads; everything else is used on the task thread
/// only.
std::atomic<MessageHook> theHook = nullptr;
void* theUser = nullptr;
const OS* theOwner = nullptr;
bool isWriting = false;

} // namespace

bool Messages::AreWanted()
{
    return theHook.load(std::memory_order_relaxed) != nullptr;
}

void Messages::Write(MessageLevel level, const char* text)
{
    const MessageHook hook = theHook.load(std::memory_order_relaxed);
    // A hook that plays an unplayable sound would recurse endlessly.
    if (hook == nullptr || text == nullptr || std::exchange(isWriting, true)) {
        return;
    }
    hook(level, text, theUser);
    isWriting = false;
}

void Messages::SetHook(const OS* owner, MessageHook hook, void* user)
{
    if (hook == nullptr && owner != theOwner) {
        return;
    }
    theHook.store(hook, std::memory_order_relaxed);
    theUser = user;
    theOwner = hook != nullptr ? owner : nullptr;
}

void Messages::AppendWhole(EngineString& text, long long number)
{
    std::array<char, 24> digits{};
    std::snprintf(digits.data(), digits.size(), "%lld", number);
    text.append(digits.data());
}

void Messages::AppendNumber(EngineString& text, double number)
{
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%.6g", number);
    text.append(digits.data());
}

} // namespace Quon
