#include "tests/kernel/Scene.h"

#include <cstdlib>

namespace Quon
{
namespace
{

// The nightly run goes through many more scenes, and larger ones.
TEST(UpdateModelTest, ScenesAreDecidedAsInTheModel)
{
    struct Row
    {
        unsigned int firstSeed;
        unsigned int scenes;
        int crowd;
        int updates;
    };
    const Row daily[] = {{1, 30, 12, 25}, {10001, 10, 60, 25}, {20001, 2, 300, 6}};
    const Row nightly[] = {{1, 300, 12, 25}, {10001, 120, 60, 25}, {20001, 8, 2000, 25}};
    for (const Row& row : std::getenv("HARMONET_NIGHTLY") ? nightly : daily) {
        for (unsigned int i = 0; i < row.scenes && !HasFailure(); ++i)
            Scene().Live(row.firstSeed + i, row.crowd, row.updates);
    }
}

} // namespace
} // namespace Quon
