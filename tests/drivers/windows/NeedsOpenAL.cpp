#include "drivers/openal/AlLibrary.h"

#include <gtest/gtest.h>

namespace Quon
{

namespace
{

/// Skips all tests of a program where OpenAL is not installed.
class NeedsOpenAL : public testing::Environment
{
public:
    void SetUp() override
    {
        if (!LoadAlLibrary()) {
            GTEST_SKIP()
                << "OpenAL32.dll does not lie beside the program; HARMONET_OPENAL_DLL names its folder "
                   "to ./dev windows";
        }
    }
};

[[maybe_unused]] const testing::Environment* const needsOpenAL =
    testing::AddGlobalTestEnvironment(new NeedsOpenAL);

} // namespace

} // namespace Quon
