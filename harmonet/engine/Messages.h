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
    /// For information: everything is as it was asked for.
    Note = 0,
    /// Something was passed over or replaced, and the operation goes on: an option takes its default, the
    /// next driver is tried.
    Warning = 1,
    /// The operation has failed.
    Error = 2,
};

/// Takes one message: a sentence without a line break at its end, valid during the call, in UTF-8 as far as
/// the names in it are. It must not throw. What it causes by calling the library is not reported.
using MessageHook = void (*)(MessageLevel level, const char* text, void* user);

/// The reasons that a false, a null or a 0 leaves out: which file was not found, which option was not
/// understood, why a driver did not open. A host asks for them with OS::SetMessageHook(). Without a hook a
/// failure costs one test more, and no text is built.
///
/// Whoever plugs into the library can write messages too: a driver or a tool calls Report().
///
/// *Thread.* The task thread only, for writing as for the hook. A driver keeps what it finds on a thread of
/// its own until BeginUpdate() or EndUpdate().
class HARMONET_ENGINE_API Messages
{
public:
    /// Whether there is a hook. Whoever has to look for a reason first asks this before.
    static bool AreWanted();

    /// Hands the message to the hook, if there is one.
    static void Write(MessageLevel level, const char* text);

    /// Appends a text, a string of any kind here, or a number.
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

    /// The last one that was set counts. A null hook takes the owner's away.
    static void SetHook(const OS* owner, MessageHook hook, void* user);
    static void AppendWhole(EngineString& text, long long number);
    static void AppendNumber(EngineString& text, double number);
};

/// Writes a message that is put together from texts and numbers, if there is a hook. No part may be a null
/// pointer. A message for which there is no memory is lost.
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
