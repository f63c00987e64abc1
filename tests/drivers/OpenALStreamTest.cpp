#include "tests/drivers/OfflineRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace Quon
{
namespace
{

constexpr int rateHz = OfflineRig::rateHz;

// What follows the end is OpenAL's: silence at once, or a fade out from the last sample.
TEST(OpenALStream, AQueueAndALoopRenderBitExactWithoutASeam)
{
    constexpr size_t fadeFrames = rateHz / 20;
    struct Row
    {
        std::vector<int> lengths; ///< Of a queue; one is a loop.
        int outputHz;
        const char* hrtf; ///< What has no place is left as it is, also at a rate without one.
    };
    const Row rows[] = {{{5000, 1, 0, 12345, 0, 3, 3, 4000, 441}, rateHz, "0"}, {{7}, rateHz, "1"},
        {{4410}, rateHz / 2, "1"}};
    for (const auto& [lengths, outputHz, hrtf] : rows) {
        SCOPED_TRACE(lengths.front());
        OfflineRig rig(8, outputHz, hrtf);
        std::vector<double> expected[2];
        const std::vector<FormulaFile*> queue = rig.MakeQueue(lengths, {0, outputHz, 2}, Scatter());
        for (const FormulaFile* const file : queue) {
            for (int i = 0; i < file->GetSoundSamples(); ++i) {
                expected[0].push_back(file->GetStored(i, 0));
                expected[1].push_back(file->GetStored(i, 1));
            }
        }
        const bool isLoop = lengths.size() == 1;
        rig.Play(*queue.front(), isLoop ? ChanLooping : 0U);
        for (const unsigned long ms : {41, 97, 62, 400}) {
            rig.Step(ms);
        }
        const Rendering heard = rig.Heard();
        ASSERT_EQ(heard.GetFrames(), static_cast<size_t>(outputHz * 6 / 10));
        for (size_t i = 0; i < heard.GetFrames(); ++i) {
            for (const int side : {0, 1}) {
                const std::vector<double>& sound = expected[side];
                const size_t place = isLoop ? i % sound.size() : i;
                if (place < sound.size()) {
                    ASSERT_EQ(heard.At(i, side), sound[place]) << i;
                }
                else {
                    const bool isOver = place >= sound.size() + fadeFrames;
                    ASSERT_LE(std::abs(heard.At(i, side)), isOver ? 0.0 : std::abs(sound.back())) << i;
                }
            }
        }
    }
}

// What other threads read and resample depends on nothing that the machine does.
TEST(OpenALStream, AnyNumberOfThreadsRendersTheSame)
{
    std::vector<double> rendered;
    for (const char* const threads : {"1", "2", "5"}) {
        OfflineRig rig(40, rateHz, nullptr, {{"OpenALRenderThreads", threads}});
        // Enough of them are resampled for other threads to take part.
        for (int i = 0; i < 40; ++i) {
            FormulaFile& file = rig.Make({3000 + 997 * i, i % 4 ? 22050 : rateHz, 1 + i % 3 / 2},
                [i](int frame, int side) { return 0.05 * Scatter()(frame + i, side); });
            file.Add(&rig.Make({5000, file.GetSampleFrequency(), file.GetChannels()}, Scatter()));
            SndChannel* const channel = rig.Play(file, i % 5 == 0 ? ChanLooping : 0U);
            // A sound that is displaced in the first update after its start fades out of what has been read.
            const auto displace = [&] { channel->Stop(); };
            const auto ms = static_cast<unsigned long>(i) % 20UL + 40UL;
            rig.Step(ms, i % 3 == 0 ? displace : std::function<void()>());
        }
        rig.Step(1000);
        const Rendering heard = rig.Heard();
        if (rendered.empty()) {
            rendered = heard.samples;
        }
        EXPECT_EQ(heard.samples, rendered) << threads;
    }
}

TEST(OpenALFade, FadesAreLinearAndAFadeOutEndsTheSound)
{
    for (const int fileHz : {rateHz, 22050}) {
        OfflineRig rig;
        const auto file = MakeFile({4410, fileHz}, Constant(0.8));
        SndChannel* const channel = rig.Create(*file, ChanLooping);
        channel->FadeIn(80);
        channel->Play();
        rig.StepTimes(2, 50);
        channel->FadeOut(500);
        rig.StepTimes(6, 50);
        channel->SetGain(0.5F);
        rig.StepTimes(3, 50);
        EXPECT_TRUE(rig.TakeEvents().empty());
        rig.Step(50);
        const std::vector<DriverEvent> expected = {{SndChannelEnded, channel, nullptr, nullptr, 600}};
        EXPECT_EQ(rig.TakeEvents(), expected);
        file->Forbid();
        rig.StepTimes(2, 50);
        EXPECT_EQ(file->GetForbiddenTouches(), 0);
        const Rendering heard = rig.Heard();
        for (size_t i = 0; i < heard.GetFrames(); ++i) {
            const double ms = 1000.0 * static_cast<double>(i) / rateHz;
            // The gain changes within a block.
            if (ms < 400 || ms > 410) {
                const double level = std::min({ms / 80, 1.0, std::max(1 - (ms - 100) / 500, 0.0)});
                ASSERT_NEAR(heard.At(i), (ms < 400 ? 0.8 : 0.4) * level, 2e-4) << i;
            }
        }
    }
}

// A tone of 100 Hz that is resumed and stopped at different phases, after steps of several lengths.
TEST(OpenALClick, AResumedSoundFadesInAndAStopDoesNotClick)
{
    struct Row
    {
        int fileHz;
        unsigned int flags;
        double level; ///< At which OpenAL plays it.
    };
    const Row rows[] = {{rateHz, 0, 1.0}, {22050, 0, 1.0}, {8000, 0, 1.0}, {rateHz, ChanPositional, 0.5957},
        {22050, ChanPositional, 0.5957}};
    for (const Row& row : rows) {
        for (unsigned long ms = 40; ms <= 50; ++ms) {
            SCOPED_TRACE(
                testing::Message() << row.fileHz << " Hz, flags " << row.flags << ", " << ms << " ms");
            OfflineRig rig;
            const auto file = MakeFile({row.fileHz, row.fileHz}, Sine(100, 0.8, row.fileHz));
            file->SkipSamples(row.fileHz / 10 + static_cast<int>(ms % 4) * row.fileHz / 400);
            SndChannel* const channel = rig.Play(*file, row.flags);
            rig.StepTimes(2, ms);
            rig.Step(53, [&] { channel->Stop(); });
            rig.StepTimes(2, ms);
            const Rendering heard = rig.Heard();
            const double steepest = 2 * row.level * 0.8 * 2 * std::numbers::pi * 100 / rateHz;
            EXPECT_LT(std::abs(heard.At(0)), steepest);
            EXPECT_LT(heard.LargestStep(1, heard.GetFrames()), steepest);
            EXPECT_NEAR(heard.Level(1323, 1323 + 882, 0), row.level * 0.8 / std::numbers::sqrt2, 0.02);
            EXPECT_EQ(heard.Level(heard.GetFrames() - 441, heard.GetFrames(), 0), 0.0);
        }
    }
}

} // namespace
} // namespace Quon
