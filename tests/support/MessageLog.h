#pragma once

#include "harmonet/engine/OS.h"

#include <string>
#include <utility>

namespace Quon
{

/// Collects the messages of an OS during its lifetime.
class MessageLog
{
public:
    explicit MessageLog(OS& newOs)
        : os(newOs)
    {
        os.SetMessageHook(Add, this);
    }
    ~MessageLog() { os.SetMessageHook(nullptr); }
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    /// All since the last call, each as a line after the first letter of its level.
    std::string Take() { return std::exchange(text, {}); }

private:
    static void Add(MessageLevel level, const char* message, void* user)
    {
        static_cast<MessageLog*>(user)->text +=
            std::string(1, "NWE"[static_cast<int>(level)]) + ' ' + message + '\n';
    }

    OS& os;
    std::string text;
};

} // namespace Quon
