#include "harmonet/engine/TaskList.h"
#include "harmonet/engine/Task.h"

#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace Quon
{
namespace
{

/// Writes down every call in a log that all tasks of a test share.
class LoggingTask : public Task
{
public:
    LoggingTask(std::vector<std::string>& newLog, const char* newName, float newOrder, bool newActive = true)
        : Task(newName, newOrder, newActive)
        , log(newLog)
    {
    }

    bool Init(OS*) override
    {
        log.push_back(std::string("init ") + GetName().GetText());
        return initResult;
    }
    void Done() override { log.push_back(std::string("done ") + GetName().GetText()); }
    UpdateCode Update(float passed) override
    {
        log.push_back(GetName().GetText());
        steps.push_back(passed);
        const UpdateCode code = result;
        // Last, because it may delete the task.
        if (onUpdate) {
            onUpdate();
        }
        return code;
    }

    std::vector<std::string>& log;
    std::vector<float> steps;
    std::function<void()> onUpdate;
    UpdateCode result = UpdateContinue;
    bool initResult = true;
};

using Log = std::vector<std::string>;

class Tasks : public testing::Test
{
protected:
    std::unique_ptr<LoggingTask> Make(const char* name, float order, bool active = true)
    {
        return std::make_unique<LoggingTask>(log, name, order, active);
    }

    Log Updated(float seconds = 0.02F)
    {
        log.clear();
        TaskList::Get().Update(seconds);
        return log;
    }

    Log log;
};

TEST_F(Tasks, RunByPriorityThenAgeWhileActive)
{
    const auto late = Make("late", 9.0F);
    const auto first = Make("first", 7.0F);
    const auto asleep = Make("asleep", 0.0F, false);
    const auto early = Make("early", -1.0F);
    const auto second = Make("second", 7.0F);
    first->result = Task::UpdateStop;
    EXPECT_EQ(Updated(), (Log{"early", "first", "second", "late"}));
    EXPECT_EQ(late->steps, std::vector<float>{0.02F});
    asleep->SetActive(true);
    EXPECT_EQ(Updated(), (Log{"early", "asleep", "second", "late"}));
}

TEST_F(Tasks, CanBeAddedAndRemovedDuringAnUpdate)
{
    auto victimBefore = Make("before", 1.0F);
    auto killer = Make("killer", 2.0F);
    auto victimNext = Make("next", 3.0F);
    auto victimLast = Make("last", 4.0F);
    const auto maker = Make("maker", 5.0F);
    std::vector<std::unique_ptr<LoggingTask>> made;
    killer->onUpdate = [&] {
        victimBefore.reset();
        victimNext.reset();
        victimLast.reset();
        killer.reset();
    };
    maker->onUpdate = [&] {
        made.push_back(Make("earlier", 1.0F));
        made.push_back(Make("equal", 5.0F));
        made.push_back(Make("later", 6.0F));
        maker->onUpdate = nullptr;
    };
    EXPECT_EQ(Updated(), (Log{"before", "killer", "maker"}));
    EXPECT_EQ(Updated(), (Log{"earlier", "maker", "equal", "later"}));
}

TEST_F(Tasks, RunOncePerUpdateWhenNestedAndAgainAfterAnException)
{
    const auto restless = Make("restless", 1.0F);
    const auto other = Make("other", 2.0F);
    restless->onUpdate = [] { TaskList::Get().Update(0.1F); };
    EXPECT_EQ(Updated(), (Log{"restless", "other"}));
    restless->onUpdate = [] { throw 5; };
    EXPECT_THROW(TaskList::Get().Update(0.1F), int);
    restless->onUpdate = nullptr;
    EXPECT_EQ(Updated(), (Log{"restless", "other"}));
}

// Three game frames a step, whose sum no float represents exactly, for some hours: rounding errors in one
// direction would add up.
TEST_F(Tasks, WithAnIntervalGetTheAccumulatedTimeWithoutLoss)
{
    TaskList::Get().SetMinimumStep("held", 0.05F);
    const auto held = Make("held", 1.0F);
    const auto free = Make("free", 1.0F);
    constexpr float frameSeconds = 0.0171F;
    constexpr int stepCount = 200000;
    for (int frame = 0; frame < 3 * stepCount; ++frame) {
        TaskList::Get().Update(frameSeconds);
    }
    EXPECT_EQ(held->steps.size(), std::size_t{stepCount});
    EXPECT_EQ(free->steps.size(), std::size_t{3 * stepCount});
    double received = 0.0;
    for (const float step : held->steps) {
        received += step;
    }
    EXPECT_NEAR(received, 3.0 * stepCount * double{frameSeconds}, 1e-6);
    TaskList::Get().SetMinimumStep("held", 0.0F);
    TaskList::Get().Update(0.01F);
    EXPECT_EQ(held->steps.size(), std::size_t{stepCount + 1});
}

TEST_F(Tasks, AreInitialisedAndEndedInOrderAndTreatInvalidTimeAsZero)
{
    const auto second = Make("second", 2.0F);
    const auto first = Make("first", 1.0F);
    EXPECT_TRUE(TaskList::Get().Init(nullptr));
    TaskList::Get().Done();
    EXPECT_EQ(log, (Log{"init first", "init second", "done first", "done second"}));
    first->initResult = false;
    EXPECT_FALSE(TaskList::Get().Init(nullptr));
    for (const float seconds :
        {-1.0F, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(Updated(seconds), (Log{"first", "second"}));
    }
    EXPECT_EQ(first->steps, (std::vector<float>{0.0F, 0.0F, 0.0F}));
}

} // namespace
} // namespace Quon
