#include "drivers/openal/Acoustics.h"
#include "drivers/openal/DeviceSource.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/Room.h"
#include "drivers/openal/SourceAcoustics.h"
#include "drivers/openal/Voice.h"
#include "examples/effects/Decay.h"
#include "harmonet/definitions/EnvReverbPresets.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/drivers/effects/OwnedList.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

namespace Quon
{
namespace
{

using Testing::OwnedList;

constexpr int rateHz = OfflineRig::rateHz;
/// Of a sound whose direct path is closed, so that only the room is heard.
constexpr FXEnvReverbSourceProperties onlyRoom = {-10000, 0, 0, 0, 0.0F, 0, 0.0F, 0, 0.0F};
/// Of each side, for a sound straight ahead.
constexpr double frontGain = 0.5957;

/// A loop around the listener or a click, with the current settings.
class Rooms : public testing::Test
{
protected:
    SndChannel* PlayTone(double hz, const FXEnvReverbSourceProperties* properties = nullptr,
        unsigned int flags = ChanPositional)
    {
        return PlayLoop(rig->Make({rateHz}, Sine(hz, 0.2, rateHz)), properties, flags);
    }

    SndChannel* PlayLoop(
        FormulaFile& file, const FXEnvReverbSourceProperties* properties, unsigned int flags = ChanPositional)
    {
        SndChannel* const channel = rig->Create(file, flags | ChanLooping);
        EXPECT_TRUE(!properties || channel->SetFXEnvReverbSourceProperties(properties));
        channel->SetPosition({0, 0, -1});
        channel->Play();
        return channel;
    }

    SndChannel* PlayClick(unsigned int flags, const OwnedList& list = {})
    {
        FormulaFile& click = rig->Make({rateHz / 10}, [](int i, int) { return i < 44 ? 0.95 : 0.0; });
        SndChannel* const channel = rig->Play(click, flags, list.Get());
        channel->SetPosition({0, 0, -1});
        return channel;
    }

    void SetRoom(const FXEnvReverb* room)
    {
        if (room) {
            EXPECT_TRUE(rig->GetDriver().SetFXEnvReverb(room, 2, 0));
        }
        else {
            rig->GetDriver().ResetFXEnvReverb(0);
        }
    }

    /// The level of the last `ms` that were rendered, both sides together.
    double GetLevel(int ms = 100) const
    {
        const Rendering heard = rig->Heard();
        const size_t end = heard.GetFrames();
        const size_t begin = end - static_cast<size_t>(rateHz / 1000 * ms);
        return std::hypot(heard.Level(begin, end, 0), heard.Level(begin, end, 1));
    }

    std::vector<double> GetLeft(size_t begin) const
    {
        const Rendering heard = rig->Heard();
        std::vector<double> left;
        for (size_t i = begin; i < heard.GetFrames(); ++i) {
            left.push_back(heard.At(i));
        }
        return left;
    }

    /// In dB, of the last two seconds.
    double GetOctaveLevel(double centreHz) const
    {
        const std::vector<double> band =
            EffectsExample::FilterOctave(GetLeft(rig->Heard().GetFrames() - 2 * rateHz), rateHz, centreHz);
        return 10 * std::log10(std::inner_product(band.begin(), band.end(), band.begin(), 0.0));
    }

    /// The time in which what is heard around 500 Hz falls by 60 dB.
    double MeasureDecay(size_t begin = 0) const
    {
        return EffectsExample::MeasureDecay(GetLeft(begin), rateHz, 500);
    }

    std::unique_ptr<OfflineRig> rig = std::make_unique<OfflineRig>();
};

// OpenAL fades a new room in by blocks, and fails with some block lengths and some decay ratios of high
// frequencies.
TEST_F(Rooms, CanBeSetBeforeStepsOfAnyLengthAtAnyRate)
{
    constexpr float decayTimes[] = {0.1F, 0.3F, 0.5F, 1.1F, 2.0F, 20.0F};
    FXEnvReverb odd = fxEnvReverbLivingRoom;
    odd.decayHFRatio = 0.1F;
    odd.density = 100.0F;
    for (const int outputHz : {8000, 11025, 22050, 44100}) {
        for (const int ms : {1, 3, 7, 40}) {
            SCOPED_TRACE(testing::Message() << ms << " ms at " << outputHz << " Hz");
            rig = std::make_unique<OfflineRig>(8, outputHz);
            SndChannel* tone = PlayTone(440);
            for (int step = 0; step < 60; ++step) {
                if (step % 5 == 0) {
                    odd.decayTime = decayTimes[step / 10];
                    SetRoom(step % 10 == 0 ? &odd : &fxEnvReverbCave);
                    tone->Stop();
                    tone = PlayTone(440);
                }
                rig->Step(ms);
            }
            const Rendering heard = rig->Heard();
            EXPECT_EQ(heard.GetFrames(), static_cast<size_t>(60 * ms * outputHz / 1000));
            EXPECT_GT(heard.Level(0, heard.GetFrames(), 0), 0.01);
            EXPECT_LT(heard.LargestStep(0, heard.GetFrames()), 0.5);
        }
    }
}

// With 1.19, these are the decays of OpenAL's reverb with the record's own values: a louder late reverb must
// not take the place of the reflections.
TEST_F(Rooms, AClickDecaysAsWithoutCompensation)
{
    struct Row
    {
        const char* name;
        const FXEnvReverb* room;
        double oldRatio, newRatio; ///< Of the decay time, with OpenAL Soft 1.19 and 1.24.
    };
    const Row rows[] = {{"room", &fxEnvReverbRoom, 1.02, 1.01}, {"hangar", &fxEnvReverbHangar, 1.03, 1.02},
        {"parking lot", &fxEnvReverbParkingLot, 1.06, 1.07},
        {"underwater", &fxEnvReverbUnderwater, 0.55, 0.56},
        {"living room", &fxEnvReverbLivingRoom, 0.27, 0.66},
        {"carpeted hallway", &fxEnvReverbCarpetedHallway, 0.48, 0.93},
        {"padded cell", &fxEnvReverbPaddedCell, 0.80, 1.52}};
    OutputDevice device(DeviceSource::GetMachine());
    ASSERT_TRUE(device.OpenLoopback(rateHz, Hrtf::Off));
    const bool isOld = device.GetSoftVersion() == SoftVersion::Old;
    OwnedList list;
    list.Add(SndFXEnvReverbSource, onlyRoom);
    for (const Row& row : rows) {
        // The room is set before there are channels, and is the last of several.
        rig = std::make_unique<OfflineRig>(0);
        SetRoom(&fxEnvReverbSewerPipe);
        SetRoom(&fxEnvReverbCave);
        // As loud as possible, because of the quantisation noise.
        FXEnvReverb room = *row.room;
        room.room = 0;
        SetRoom(&room);
        rig->GetDriver().SetMaxChannels(4);
        for (int i = 0; i < 4; ++i) {
            PlayClick(ChanPositional, list);
        }
        rig->StepTimes(static_cast<int>(room.decayTime * 18) + 20, 50);
        EXPECT_NEAR(MeasureDecay() / room.decayTime, isOld ? row.oldRatio : row.newRatio, 0.05) << row.name;
    }
}

// A record's level is that of a steady sound, regardless of the decay time.
TEST_F(Rooms, LateReverbHasItsLevelAtAnyDecayTime)
{
    struct Row
    {
        float decayTime, hfRatio, density;
        std::int32_t room, reverb;
    };
    const Row rows[] = {{1.49F, 1.0F, 100, 0, 0}, {0.4F, 1.0F, 100, 0, 0}, {0.75F, 1.0F, 100, 0, 0},
        {1.0F, 1.0F, 100, 0, 0}, {4.0F, 1.0F, 100, 0, 0}, {10.0F, 1.0F, 100, 0, 0}, {10.0F, 0.1F, 100, 0, 0},
        {1.49F, 0.1F, 100, 0, 0}, {0.75F, 0.2F, 100, 0, 0}, {1.49F, 0.83F, 10, 0, 0},
        // Beyond OpenAL's range for the late reverb, but not for the room.
        {0.4F, 0.83F, 100, -1000, 1000}};
    const Testing::Pcm white = Testing::MakeNoise(4 * rateHz, 0.2F);
    const auto noise = MakeFile({4 * rateHz}, [&](int i, int) { return white[static_cast<size_t>(i)]; });
    double usual = 0.0;
    for (const Row& row : rows) {
        rig = std::make_unique<OfflineRig>();
        FXEnvReverb room = fxEnvReverbGeneric;
        std::tie(room.decayTime, room.decayHFRatio, room.density, room.room, room.reverb) =
            std::tie(row.decayTime, row.hfRatio, row.density, row.room, row.reverb);
        room.reflections = -10000;
        SetRoom(&room);
        PlayLoop(*noise, &onlyRoom);
        rig->StepTimes(static_cast<int>(10 * row.decayTime) + 20, 100);
        const double level = GetOctaveLevel(500);
        usual = &row == rows ? level : usual;
        EXPECT_NEAR(level, usual, 1.5) << "row " << &row - rows;
        rig->Close();
        noise->Rewind();
    }
}

TEST_F(Rooms, OnlyPositionalSoundsAreInTheRoomUnlessTheyOptOut)
{
    const std::pair<unsigned int, bool> rows[] = {
        {ChanPositional, true}, {ChanPositional | ChanDisableMicFX, false}, {0, false}};
    EXPECT_FALSE(rig->GetDriver().SetFXEnvReverb(nullptr, 2, 0));
    SetRoom(&fxEnvReverbGeneric);
    for (const auto& [flags, isInRoom] : rows) {
        SCOPED_TRACE(flags);
        SndChannel* const channel = PlayClick(flags);
        const bool isPositional = flags != 0;
        FXEnvReverbSourceProperties live{};
        EXPECT_FALSE(channel->GetFXEnvReverbSourceProperties(&live));
        EXPECT_EQ(channel->SetFXEnvReverbSourceProperties(&onlyRoom), isPositional);
        EXPECT_EQ(channel->GetFXEnvReverbSourceProperties(&live), isPositional);
        EXPECT_EQ(live.direct, isPositional ? onlyRoom.direct : 0);
        rig->StepTimes(8, 50);
        EXPECT_EQ(GetLevel() > 0.001, isInRoom);
        rig->StepTimes(60, 50);
    }
}

TEST_F(Rooms, AChangeOfRoomDoesNotClickAndAResetRemovesIt)
{
    const FXEnvReverb* const rooms[] = {&fxEnvReverbHangar, &fxEnvReverbPaddedCell, &fxEnvReverbUnderwater,
        &fxEnvReverbSewerPipe, nullptr, &fxEnvReverbBathRoom, &fxEnvReverbPsychotic};
    PlayTone(100)->FadeIn(500);
    rig->StepTimes(20, 50);
    for (const unsigned long ms : {800UL, 437UL, 103UL, 51UL, 40UL}) {
        for (const FXEnvReverb* const room : rooms) {
            rig->Step(ms, [&] { SetRoom(room); });
        }
    }
    SetRoom(nullptr);
    rig->StepTimes(20, 50);
    const Rendering heard = rig->Heard();
    // The tone has bends of 6e-5 in the loudest room, and 16 bits as much again. A sound that comes into a
    // room or leaves it does so within 64 sample frames at least.
    EXPECT_LT(heard.LargestBend(1, heard.GetFrames()), 5e-4);
    EXPECT_GT(heard.LargestStep(1, heard.GetFrames()), 0.0019) << "that of the tone alone is 0.0017";
    // The tone repeats every 10 ms.
    const size_t last = heard.GetFrames() - rateHz / 4;
    const size_t dry = rateHz / 2 + last % (rateHz / 100);
    for (size_t i = 0; i < rateHz / 4; ++i) {
        ASSERT_EQ(heard.At(last + i), heard.At(dry + i)) << i;
    }
}

TEST_F(Rooms, SourcePropertiesAttenuateDirectSoundAndSend)
{
    // What is left, in hundredths of a decibel, of a low tone and of one at OpenAL's reference, 5 kHz.
    struct Row
    {
        FXEnvReverbSourceProperties properties;
        int low, high;
    };
    const Row directRows[] = {{{0, 0, 0, 0, 0, 0, 0, 0, 0}, 0, 0},
        {{-600, 0, 0, 0, 0, 0, 0, 0, 0}, -600, -600}, {{0, -1200, 0, 0, 0, 0, 0, 0, 0}, 0, -1200},
        {{0, 0, 0, 0, 0, -1000, 0.25F, 0, 0}, -250, -1000},
        {{-300, 0, 0, 0, 0, -1000, 0.5F, -800, 1.0F}, -1600, -2100},
        {{500, 500, 0, 0, 0, 500, 0, 500, 2.0F}, 0, 0}};
    for (const bool isHigh : {false, true}) {
        SndChannel* const tone = PlayTone(isHigh ? 5000 : 100);
        for (const Row& row : directRows) {
            ASSERT_TRUE(tone->SetFXEnvReverbSourceProperties(&row.properties));
            rig->StepTimes(3, 50);
            const double left = 2000 * std::log10(GetLevel() / (0.2 * frontGain));
            EXPECT_NEAR(left, isHigh ? row.high : row.low, 60) << "row " << &row - directRows;
        }
        tone->Stop();
    }
    SetRoom(&fxEnvReverbGeneric);
    SndChannel* const inRoom = PlayTone(100, &onlyRoom);
    inRoom->SetMinMaxDistance(1, 100, false);
    rig->StepTimes(40, 50);
    const double plain = GetLevel(500);
    struct RoomRow
    {
        FXEnvReverbSourceProperties properties;
        float distance;
        double expected;
    };
    const RoomRow roomRows[] = {{{-10000, 0, -900, 0, 0, 0, 0, 0, 0}, 1, -900},
        {{-10000, 0, 0, 0, 0, -5000, 1, 0, 0}, 1, 0}, {{-10000, 0, -300, 0, 0, 0, 0, -1000, 0.5F}, 1, -800},
        // The room's level falls with the distance only with a room rolloff.
        {onlyRoom, 8, 0}, {{-10000, 0, 0, 0, 1.0F, 0, 0, 0, 0}, 8, 2000 * std::log10(1.0 / 8)}};
    for (const RoomRow& row : roomRows) {
        inRoom->SetFXEnvReverbSourceProperties(&row.properties);
        inRoom->SetPosition({0, 0, -row.distance});
        rig->StepTimes(60, 50);
        EXPECT_NEAR(2000 * std::log10(GetLevel(500) / plain), row.expected, 60) << "row " << &row - roomRows;
    }
}

// Like a sound card: time advances in steps of 10 ms, and from time to time the device mixes what is due.
TEST(RoomParts, AChangeOfRoomDoesNotClickWithLongMixPeriods)
{
    OutputDevice device(DeviceSource::GetMachine());
    ASSERT_TRUE(device.OpenLoopback(rateHz, Hrtf::Off));
    const ContextScope scope(device);
    Acoustics acoustics(device);
    ASSERT_TRUE(acoustics.Create());
    Voice voice;
    ASSERT_TRUE(voice.Create(false));
    voice.Begin(true);
    voice.SetPosition({0, 0, -1});
    SourceAcoustics source(acoustics);
    source.Begin(voice.GetSource(), true, false, SndFXList());
    OwnedList list;
    list.Add(SndFXEnvReverb, fxEnvReverbCave);
    SourceAcoustics withOwnRoom(acoustics);
    withOwnRoom.Begin(0, false, false, list.Get());
    std::vector<float> tone;
    for (int i = 0; i < 10 * rateHz; ++i) {
        const double rise = std::min(static_cast<double>(i) / rateHz, 1.0);
        tone.push_back(static_cast<float>(rise * Sine(100, 0.2, rateHz)(i, 0)));
    }
    voice.Queue(tone.data(), static_cast<int>(tone.size()), 1, rateHz);
    const FXEnvReverb* const rooms[] = {&fxEnvReverbHangar, &fxEnvReverbPaddedCell, nullptr};
    Rendering heard{rateHz, 2, false, {}};
    for (int ms = 0; ms < 9000; ms += 10) {
        if (ms % 450 == 0) {
            const FXEnvReverb* const room = rooms[ms / 450 % 3];
            acoustics.ResetRoom();
            EXPECT_EQ(acoustics.SetRoom(room), room != nullptr);
        }
        acoustics.Tick(std::int64_t{ms} * rateHz / 1000);
        if (source.IsOutdated()) {
            source.Follow(voice.IsPlaying());
        }
        const int period = ms < 4500 ? 220 : 2500;
        while (static_cast<int>(heard.GetFrames()) + period < ms * rateHz / 1000) {
            std::vector<float> block(static_cast<size_t>(2 * period));
            device.Render(block.data(), period);
            heard.samples.insert(heard.samples.end(), block.begin(), block.end());
        }
    }
    EXPECT_LT(heard.LargestBend(1, heard.GetFrames()), 5e-4);
    EXPECT_GT(heard.LargestStep(1, heard.GetFrames()), 0.0018) << "that of the tone alone is 0.0017";
    voice.GoSilent();
    acoustics.Destroy();
    const auto isSlot =
        reinterpret_cast<LPALISAUXILIARYEFFECTSLOT>(alGetProcAddress("alIsAuxiliaryEffectSlot"));
    for (ALuint slot = 1; slot <= 64; ++slot) {
        EXPECT_FALSE(isSlot(slot)) << slot << " is left for the next device";
    }
}

/// OpenAL's slots, of which there is only one.
int slotsLeft = 0;
LPALGENAUXILIARYEFFECTSLOTS genSlots = nullptr;

void GenOneSlot(ALsizei count, ALuint* slots)
{
    // A negative number is an error.
    genSlots(slotsLeft-- > 0 ? count : -1, slots);
}

TEST(RoomParts, WithASingleSlotTheNextRoomWaitsForSilence)
{
    OutputDevice device(DeviceSource::GetMachine());
    ASSERT_TRUE(device.OpenLoopback(rateHz, Hrtf::Off));
    const ContextScope scope(device);
    EfxFunctions efx;
    ASSERT_GT(efx.Load(), 0);
    genSlots = efx.genSlots;
    efx.genSlots = GenOneSlot;
    Room room;
    EXPECT_FALSE(room.Create(efx));
    slotsLeft = 1;
    ASSERT_TRUE(room.Create(efx));
    room.Set(fxEnvReverbHangar, 0, 1000);
    const ReverbSlot* const slot = room.GetSlot();
    ASSERT_NE(slot, nullptr);
    room.Tick(10, 1000);
    room.Set(fxEnvReverbRoom, 10, 1000);
    EXPECT_EQ(room.GetSlot(), nullptr);
    for (int ms = 20; ms < 1000; ms += 10) {
        room.Tick(ms, 1000);
    }
    EXPECT_EQ(room.GetSlot(), slot);
    EXPECT_EQ(slot->GetRoom().decayTime, fxEnvReverbRoom.decayTime);
    room.Destroy();
}

/// A click in the sound's own room.
class OwnRoom : public Rooms
{
protected:
    SndChannel* PlayIn(const FXEnvReverb& room, unsigned int flags = 0)
    {
        OwnedList list;
        list.Add(SndFXEnvReverb, room);
        return PlayClick(flags, list);
    }

    FXEnvReverb live{};
};

TEST_F(OwnRoom, RingsOutAfterTheSoundHasEnded)
{
    for (const unsigned int flags : {0U, unsigned{ChanPositional}}) {
        const size_t begin = rig->Heard().GetFrames();
        SndChannel* const channel = PlayIn(fxEnvReverbStoneRoom, flags);
        ASSERT_TRUE(channel->GetFXEnvReverbListenerProperties(&live));
        EXPECT_EQ(live.decayTime, fxEnvReverbStoneRoom.decayTime);
        rig->StepTimes(3, 50);
        EXPECT_EQ(rig->TakeEvents().size(), 1U) << "the channel is free already";
        EXPECT_FALSE(channel->GetFXEnvReverbListenerProperties(&live));
        rig->StepTimes(60, 50);
        // Past the click itself, which is heard as well.
        EXPECT_NEAR(MeasureDecay(begin + rateHz / 100), 2.31, 0.231);
        EXPECT_EQ(GetLevel(20), 0.0);
    }
}

TEST_F(OwnRoom, IsAttenuatedLikeItsSound)
{
    double levels[2] = {};
    for (const int far : {0, 1}) {
        SndChannel* const channel = PlayIn(fxEnvReverbCave, ChanPositional);
        channel->SetMinMaxDistance(1, 100, false);
        channel->SetPosition({0, 0, far ? -8.0F : -1.0F});
        rig->StepTimes(6, 50);
        levels[far] = GetLevel(200);
        rig->StepTimes(100, 50);
    }
    EXPECT_NEAR(levels[1] / levels[0], 1.0 / 8, 0.01);
}

TEST_F(OwnRoom, StopEndsItWithoutAClick)
{
    SndChannel* const channel = PlayIn(fxEnvReverbHangar);
    rig->StepTimes(2, 45);
    EXPECT_GT(GetLevel(20), 0.001);
    const size_t stopped = rig->Heard().GetFrames();
    channel->Stop();
    rig->StepTimes(3, 45);
    EXPECT_EQ(GetLevel(20), 0.0);
    const Rendering heard = rig->Heard();
    EXPECT_LE(
        heard.LargestStep(stopped, heard.GetFrames()), heard.LargestStep(stopped - rateHz / 20, stopped));
}

TEST_F(OwnRoom, EqualRoomsAreSharedAndTheNinthIsNotApplied)
{
    SndChannel* channels[4] = {};
    for (SndChannel*& channel : channels) {
        channel = PlayIn(fxEnvReverbCave);
    }
    for (SndChannel* const channel : channels) {
        EXPECT_TRUE(channel->GetFXEnvReverbListenerProperties(&live));
        channel->Stop();
    }
    rig->StepTimes(4, 50);
    FXEnvReverb room = fxEnvReverbCave;
    for (int i = 1; i <= 9; ++i) {
        room.decayTime = static_cast<float>(i);
        EXPECT_EQ(PlayIn(room)->GetFXEnvReverbListenerProperties(&live), i <= 8) << i;
        rig->StepTimes(3, 50);
    }
    rig->StepTimes(40, 50);
    EXPECT_TRUE(PlayIn(room)->GetFXEnvReverbListenerProperties(&live)) << "one has rung out meanwhile";
}

} // namespace
} // namespace Quon
