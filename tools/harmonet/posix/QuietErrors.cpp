#include "tools/harmonet/QuietErrors.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace Tool
{

QuietErrors::QuietErrors()
    : kept(dup(STDERR_FILENO))
{
    std::fflush(stderr);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0) {
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
}

QuietErrors::~QuietErrors()
{
    if (kept >= 0) {
        std::fflush(stderr);
        dup2(kept, STDERR_FILENO);
        close(kept);
    }
}

} // namespace Tool
