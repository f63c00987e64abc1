// Sounds that lose their channel and return: their positions and fades.

#include "tests/drivers/OfflineRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace Quon
{
namespace
{

constexpr int rateHz = OfflineRig::rateHz;
constexpr unsigned long stepMs = 40;

struct Row
{
    const char* name;
    std::vector<int> lengths; ///< Of a queue; one is a loop.
    int fileHz;
    unsigned int flags;
    unsigned long playedHz;
    double tolerance; ///< In the last bits of the output, where the rate is converted.
};

const Row rows[] = {{"one file", {20 * rateHz, 1}, rateHz, 0, 0, 0.0},
    {"a queue", {25000, 3, 30000, 0, 100, 60000, 20 * rateHz}, rateHz, 0, 0, 0.0},
    {"a loop", {30011}, rateHz, ChanLooping, 0, 0.0},
    {"a loop of less than is read ahead", {441}, rateHz, ChanLooping, 0, 0.0},
    {"half the rate", {10000, 20 * rateHz}, 22050, 0, 0, 2e-4},
    {"a loop at half the rate", {15007}, 22050, ChanLooping, 0, 2e-4},
    {"another rate than the file's", {50000, 20 * rateHz}, 22050, 0, 33075, 2e-4},
    {"positional", {20 * rateHz, 1}, 22050, ChanPositional, 0, 2e-4}};

/// A sound that plays while its channel is taken from it and given back, as the library does it.
class Sound
{
public:
    Sound(DriverRig& driverRig, const Row& newRow)
        : rig(driverRig)
        , row(newRow)
    {
        // Not too high for the filters of the conversion.
        const auto rising = [](int i, int) {
            return 0.3 * std::sin(0.7 * i) + 0.3 * std::sin(1e-5 * std::pow(i, 1.7));
        };
        head = rig.MakeQueue(row.lengths, {0, row.fileHz}, rising).front();
        rig.onEvent = [this](const DriverEvent& event) { head = static_cast<FormulaFile*>(event.newFile); };
    }

    void Start()
    {
        channel = rig.Create(*head, row.flags);
        channel->SetFrequency(row.playedHz);
        channel->Play();
    }

    void Lose()
    {
        channel->Stop();
        EXPECT_EQ(channel->GetSndFile(), head);
    }

    /// Moves on without a channel.
    void Emulate()
    {
        const unsigned long hz = row.playedHz != 0 ? row.playedHz : static_cast<unsigned long>(row.fileHz);
        auto left = static_cast<int>(hz * stepMs / 1000);
        left -= head->SkipSamples(left);
        while (left > 0) {
            if (row.flags & ChanLooping) {
                head->Rewind();
            }
            else {
                head = static_cast<FormulaFile*>(head->GetNext());
            }
            left -= head->SkipSamples(left);
        }
    }

private:
    DriverRig& rig;
    const Row& row;
    FormulaFile* head = nullptr;
    SndChannel* channel = nullptr;
};

constexpr int steps = 90;

Rendering RenderUndisturbed(const Row& row)
{
    OfflineRig rig;
    Sound sound(rig, row);
    rig.Step(stepMs, [&] { sound.Start(); });
    rig.StepTimes(steps, stepMs);
    return rig.Heard();
}

// The library advances a virtual sound by the elapsed time, from where the driver has left its file. After
// any number of losses the output is therefore the same as without them.
TEST(OpenALReturn, ResumesAtTheRightSampleAfterAnyNumberOfLosses)
{
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Rendering expected = RenderUndisturbed(row);
        OfflineRig rig;
        Sound sound(rig, row);
        std::mt19937 random(1);
        rig.Step(stepMs, [&] { sound.Start(); });
        bool isLost = false;
        size_t settled = 0; ///< Where the last return is over.
        int losses = 0;
        size_t compared = 0;
        for (int step = 0; step < steps; ++step) {
            rig.Step(stepMs, [&] {
                if (isLost) {
                    sound.Emulate();
                }
                if (random() % 3 != 0) {
                    return;
                }
                isLost ? sound.Start() : sound.Lose();
                losses += !isLost;
                isLost = !isLost;
            });
            const Rendering heard = rig.Heard();
            const size_t end = heard.GetFrames();
            if (isLost) {
                settled = end + 3 * stepMs * rateHz / 1000;
            }
            for (size_t i = settled; i < end; ++i, ++compared) {
                ASSERT_NEAR(heard.At(i), expected.At(i), row.tolerance) << i << " after " << losses;
            }
            settled = std::max(settled, end);
        }
        EXPECT_GT(losses, 10);
        EXPECT_GT(compared, static_cast<size_t>(rateHz / 3));
    }
}

TEST(OpenALReturn, ADisplacedSoundFadesOutAndAStoppedOneEndsAtOnce)
{
    for (const bool isTaken : {true, false}) {
        OfflineRig rig(1);
        const auto file = MakeFile({10 * rateHz}, Constant(0.5));
        SndChannel* const channel = rig.Play(*file);
        rig.Step(50);
        const auto stop = [&] {
            channel->Stop();
            file->Forbid();
            EXPECT_NE(rig.Create(rig.Make({rateHz}, Constant(0.0))), nullptr)
                << "the channel is free at once";
        };
        rig.Step(50, isTaken ? stop : std::function<void()>());
        if (!isTaken) {
            stop();
        }
        rig.Step(50);
        const Rendering heard = rig.Heard();
        const size_t begin = heard.GetFrames() - 50 * rateHz / 1000;
        for (size_t ms = 0; ms < 50; ++ms) {
            const double fadeMs = isTaken ? 30.0 : 5.0;
            const double level = std::max(1.0 - static_cast<double>(ms) / fadeMs, 0.0);
            const double sample = heard.At(begin + ms * rateHz / 1000);
            EXPECT_LT(sample, 0.5 * level + 0.04) << ms;
            // At once takes OpenAL a short block or its own ramp.
            EXPECT_GT(sample, isTaken ? 0.5 * level - 0.04 : -1e-9) << ms;
        }
        EXPECT_LT(heard.LargestStep(begin, heard.GetFrames()), 0.5 / 60) << "a click";
        EXPECT_EQ(file->GetForbiddenTouches(), 0);
    }
}

} // namespace
} // namespace Quon
