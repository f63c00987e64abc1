#include "tools/harmonet/QuietErrors.h"

#include <cstdio>

#include <fcntl.h>
#include <io.h>

namespace Tool
{

namespace
{
constexpr int errorDescriptor = 2;
} // namespace

QuietErrors::QuietErrors()
    : kept(_dup(errorDescriptor))
{
    std::fflush(stderr);
    const int nowhere = _open("NUL", _O_WRONLY);
    if (nowhere >= 0) {
        _dup2(nowhere, errorDescriptor);
        _close(nowhere);
    }
}

QuietErrors::~QuietErrors()
{
    if (kept >= 0) {
        std::fflush(stderr);
        _dup2(kept, errorDescriptor);
        _close(kept);
    }
}

} // namespace Tool
