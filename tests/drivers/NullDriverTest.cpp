#include "tests/drivers/EveryDriver.h"

namespace Quon
{
namespace
{

std::unique_ptr<DriverRig> MakeNull(int maxChannels)
{
    auto rig = std::make_unique<DriverRig>("HarmonetNull");
    EXPECT_TRUE(rig->Open(22050, maxChannels));
    return rig;
}

INSTANTIATE_TEST_SUITE_P(
    , EveryDriver, testing::Values(MakeNull), [](const auto&) { return std::string("Null"); });

TEST(NullDriver, ReadsEveryDueSampleFrameOverAnHour)
{
    const auto file = MakeFile({100 * 3600 * 1000, 11025}, Constant(0.0));
    const auto rig = MakeNull(1);
    SndChannel* const channel = rig->Play(*file);
    std::int64_t thousandths = 0;
    long elapsed = 0;
    for (long ms = 40; elapsed < 3600 * 1000; ms = 40 + (ms * 7 + 3) % 31) {
        const long hz = elapsed % 3 == 0 ? 11025 : 100 + ms * 7;
        channel->SetFrequency(hz == 11025 ? 0 : static_cast<unsigned long>(hz));
        rig->Step(static_cast<unsigned long>(ms));
        elapsed += ms;
        thousandths += std::int64_t{ms} * hz;
        ASSERT_EQ(file->GetFramesRead(), thousandths / 1000);
    }
}

TEST(NullDriver, ALongHaltDoesNotReadALoopRepeatedly)
{
    const auto file = MakeFile({1000, 10000}, Constant(0.0));
    const auto rig = MakeNull(1);
    rig->Play(*file, ChanLooping);
    rig->Step(24UL * 3600 * 1000 + 12);
    EXPECT_EQ(file->GetCurrentSample(), 120);
    EXPECT_LE(file->GetFramesRead(), 1000);
    // Nor is one with a beginning that is heard once.
    file->Rewind();
    EXPECT_TRUE(file->SetLoopRegion(300, 700));
    rig->Step(24UL * 3600 * 1000 + 12);
    EXPECT_EQ(file->GetCurrentSample(), 300 + (24 * 3600 * 10000 + 120 - 300) % 400);
    EXPECT_LE(file->GetFramesRead(), 2000);
}

} // namespace
} // namespace Quon
