#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

#include <new>
#include <string_view>
#include <type_traits>

namespace Quon
{

class OS;

/// How serious a message is.
enum class MessageLevel
{
    /// Information only; nothing was ignored or replaced.
    Note = 0,
    /// Something was ignored or replaced, and the operation continues: an option takes its default, or the
    /// next driver is tried.
    Warning = 1,
    /// The operation has failed.
    Error = 2,
};

/// Receives one message: a sentence without a trailing line break, valid during the call, in UTF-8 if the
/// names in it are. It must not throw. Messages caused by calls that it makes into the library are not
/// reported.
using MessageHook = void (*)(MessageLevel level, const char* text, void* user);

/// Messages that explain a result of false, null or 0: which file was not found, which option is invalid, why
/// a driver did not open. A host receives them through OS::SetMessageHook(). Without a hook a failure costs
/// one additional test, and no text is built.
///
/// Code that plugs into the library can write messages too: a driver or a tool calls Report().
///
/// *Thread.* Messages are written, and the hook is called, on the task thread only. A driver that detects
/// something on its own thread must defer the message to BeginUpdate() or EndUpdate().
class HARMONET_ENGINE_API Messages
{
public:
    /// Whether there is a hook. Check this before determining a reason that takes extra work.
    static bool AreWanted();

    /// Passes the message to the hook, if there is one.
    static void Write(MessageLevel level, const char* text);

    /// Appends a text, a string of any of the engine's types, or a number.
    template<class Part>
    static void Append(EngineString& text, const Part& part)
    {
        if constexpr (std::is_same_v<Part, PString>) {
            text.append(part.GetView());
        }
        else if constexpr (std::is_integral_v<Part>) {
            AppendWhole(text, static_cast<long long>(part));
        }
        else if constexpr (std::is_floating_point_v<Part>) {
            AppendNumber(text, static_cast<double>(part));
        }
        else {
            text.append(std::string_view(part));
        }
    }

private:
    friend class OS;

    /// The hook set last is used. A null hook removes the owner's hook.
    static void SetHook(const OS* owner, MessageHook hook, void* user);
    static void AppendWhole(EngineString& text, long long number);
    static void AppendNumber(EngineString& text, double number);
};

/// Writes a message composed of texts and numbers, if there is a hook. No part may be a null pointer. The
/// message is dropped if memory runs out.
template<class... Parts>
void Report(MessageLevel level, const Parts&... parts)
{
    if (!Messages::AreWanted()) {
        return;
    }
    try {
        EngineString text;
        (Messages::Append(text, parts), ...);
        Messages::Write(level, text.c_str());
    }
    catch (const std::bad_alloc&) {
    }
}

} // namespace Quon
