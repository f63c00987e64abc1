#include "harmonet/engine/HostMemory.h"
#include "tests/failures/FailureTest.h"

#include <cstdlib>
#include <new>

using namespace Quon;

namespace
{

/// Counts down to the allocation that fails; 0 and below while none is to.
int countDown = 0;
bool hasRunOut = false;

void* TakeUnlessDue(std::size_t bytes)
{
    if (countDown > 0 && --countDown == 0) {
        hasRunOut = true;
        return nullptr;
    }
    return std::malloc(bytes);
}

void Arm(int step)
{
    hasRunOut = false;
    countDown = step;
    HostMemory::SetFunctions(TakeUnlessDue, std::free);
}

bool Disarm()
{
    countDown = 0;
    HostMemory::SetFunctions(nullptr, nullptr);
    return hasRunOut;
}

} // namespace

TEST(AllocationFailures, AnActionWithoutMemoryFailsWithoutLeaking)
{
    for (const FallibleAction& action : fallibleActions) {
        FailEachStep(action, Arm, Disarm);
    }
}

// What an update could not do without memory is done in the next one.
TEST(AllocationFailures, AnUpdateWithoutMemoryEndsEarlyAndTheNextRuns)
{
    GameFolder folder;
    std::size_t blocksBefore = 0;
    int step = 0;
    for (bool hasFailed = true; hasFailed && !HasFailure(); ++step) {
        SCOPED_TRACE(step);
        {
            SmallGame game(folder);
            ASSERT_TRUE(game.Start());
            game.microphone.Activate();
            ASSERT_TRUE(game.StartMany());
            Arm(step);
            for (int i = 0; i < 8; ++i) {
                try {
                    SmallGame::Step(i < 6 ? 100 : 3000);
                }
                catch (const std::bad_alloc&) {
                    EXPECT_GT(step, 0);
                }
            }
            hasFailed = Disarm() || step == 0;
            SmallGame::Step(100);
            EXPECT_GT(game.music.GetRemainLength(), 0U);
            EXPECT_TRUE(game.group.Play2DSound("a.wav", nullptr, Sound::StartImmediately, 0, 0) != 0);
            SmallGame::Step(100);
        }
        folder.DropResources();
        if (step == 0) {
            blocksBefore = Alloc::LiveBlocks();
        }
        EXPECT_EQ(Alloc::LiveBlocks(), blocksBefore);
        ASSERT_LT(step, 500);
    }
    EXPECT_GT(step, 2) << "nothing has failed";
}
