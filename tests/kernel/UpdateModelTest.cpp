#include "tests/kernel/Scene.h"

#include <cstdlib>

namespace Quon
{
namespace
{

// The nightly run goes through many more scenes, and larger ones.
bool IsNightly()
{
    return std::getenv("HARMONET_NIGHTLY") != nullptr;
}

void LiveThrough(unsigned int firstSeed, int scenes, int crowd, int updates)
{
    for (int i = 0; i < scenes && !testing::Test::HasFailure(); ++i) {
        Scene scene;
        scene.Live(firstSeed + static_cast<unsigned int>(i), crowd, updates);
    }
}

TEST(UpdateModelTest, SmallScenesAreDecidedAsInTheModel)
{
    LiveThrough(1, IsNightly() ? 300 : 12, 12, 25);
}

TEST(UpdateModelTest, CrowdedScenesAreDecidedAsInTheModel)
{
    LiveThrough(10001, IsNightly() ? 120 : 5, 60, 25);
}

TEST(UpdateModelTest, HugeScenesAreDecidedAsInTheModel)
{
    LiveThrough(20001, IsNightly() ? 8 : 1, IsNightly() ? 2000 : 300, IsNightly() ? 25 : 6);
}

} // namespace
} // namespace Quon
