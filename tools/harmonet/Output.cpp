#include "tools/harmonet/Output.h"

#include "tools/harmonet/Console.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Tool
{

namespace
{

constexpr const char* standardOutput = "standard output";

} // namespace

void Print(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        throw WriteError(standardOutput, errno);
    }
}

void PrintJson(const nlohmann::ordered_json& value)
{
    constexpr int inOneLine = -1;
    Print(value.dump(inOneLine, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n');
}

void FlushOutput()
{
    if (std::fflush(stdout) != 0) {
        throw WriteError(standardOutput, errno);
    }
}

ToolError WriteError(const std::string& what, int reason)
{
    if (IsClosedPipe(reason)) {
        return ToolError("the reader of " + what + " closed it", ExitCode::ClosedPipe);
    }
    return ToolError("cannot write to " + what + ": " + std::strerror(reason), ExitCode::NoOutput);
}

void PrintError(const std::string& sentence)
{
    std::fflush(stdout);
    std::fprintf(stderr, "harmonet: %s\n", sentence.c_str());
}

void PrintWarning(const std::string& sentence)
{
    PrintError("warning: " + sentence);
}

} // namespace Tool
