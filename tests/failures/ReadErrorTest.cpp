#include "tests/failures/FailureTest.h"

#include <cerrno>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

using namespace Quon;

namespace
{

int countDown = 0;
bool staysBroken = false;
bool hasBroken = false;

bool IsDue()
{
    const bool isDue = (countDown > 0 && --countDown == 0) || (hasBroken && staysBroken);
    hasBroken = hasBroken || isDue;
    return isDue;
}

void Arm(int step)
{
    hasBroken = false;
    countDown = step;
}

bool Disarm()
{
    countDown = 0;
    staysBroken = false;
    return std::exchange(hasBroken, false);
}

void ArmForGood(int step)
{
    Arm(step);
    staysBroken = true;
}

} // namespace

// In place of the system's, for all libraries of this program.
extern "C" __attribute__((visibility("default"))) ssize_t read(
    int descriptor, void* buffer, std::size_t bytes)
{
    if (IsDue()) {
        errno = EIO;
        return -1;
    }
    return syscall(SYS_read, descriptor, buffer, bytes);
}

namespace
{

class ReadErrors : public testing::Test
{
protected:
    static void FailReads(void (*arm)(int))
    {
        for (const FallibleAction& action : fallibleActions) {
            const std::string_view name = action.name;
            // What reads no file.
            if (name == "start-up" || name == "a block of memory" || name == "effects" ||
                action.playedBefore || name == "a resource") {
                continue;
            }
            FailEachStep(action, arm, Disarm);
        }
    }
};

} // namespace

TEST_F(ReadErrors, AnActionThatMeetsOneFailsWithoutLeaking)
{
    FailReads(Arm);
}

TEST_F(ReadErrors, AnActionOnABrokenDiskFailsWithoutLeaking)
{
    FailReads(ArmForGood);
}

// Data that cannot be read while a sound plays end the sound.
TEST_F(ReadErrors, AGameContinuesAfterReadErrors)
{
    GameFolder folder;
    for (int step = 1; step < 60; ++step) {
        SCOPED_TRACE(step);
        SmallGame game(folder);
        ASSERT_TRUE(game.Start());
        game.microphone.Activate();
        ASSERT_TRUE(game.StartMany());
        ArmForGood(step);
        for (int i = 0; i < 40; ++i) {
            SmallGame::Step(100);
        }
        Disarm();
        EXPECT_TRUE(game.group.Play2DSound("bytes.wav", nullptr, 0, 0, 0) != 0);
        SmallGame::Step(50);
    }
}
