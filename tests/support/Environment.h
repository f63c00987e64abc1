#pragma once

#include <cstdlib>
#include <string>

namespace Quon
{

/// Sets a variable of this process's environment, in place of what it had. False if the system refuses.
#if defined(_WIN32)
inline bool SetEnvironment(const char* name, const std::string& value)
{
    return _putenv_s(name, value.c_str()) == 0;
}
#else
inline bool SetEnvironment(const char* name, const std::string& value)
{
    return setenv(name, value.c_str(), 1) == 0;
}
#endif

} // namespace Quon
