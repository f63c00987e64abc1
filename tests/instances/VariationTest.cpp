// Sounds of definitions that vary from start to start and have limits.

#include "harmonet/instances/Music.h"
#include "harmonet/instances/SndPolyline.h"
#include "tests/instances/WithResources.h"
#include "tests/support/MessageLog.h"
#include "tests/support/SoundTest.h"

#include <algorithm>
#include <set>

namespace Quon
{
namespace
{

constexpr const char* threeFiles = "*FILE a.wav\n*VARIANT b.wav\n*VARIANT c.wav\n";

class Variation : public WithResources<SoundTest>
{
protected:
    Variation()
    {
        for (const char* name : {"a.wav", "b.wav", "c.wav"}) {
            WriteWave(name, {2000});
        }
    }

    void Define(const std::string& name, const std::string& keywords)
    {
        folder.Write(name, "*SOUND_DEFINITION\n{\n*FILE a.wav\n" + keywords + "\n}\n");
    }

    int Start(const char* name = "a.sound", int flags = 0)
    {
        return group->Play2DSound(name, &database, flags, 0, 0);
    }

    int StartAt(float x, const char* name = "a.sound")
    {
        return group->Play3DSound(Vector3{x, 0.0F, 0.0F}, name, &database, 0, 0, Sound::Settings(), 0);
    }

    /// The first letters of the files of so many starts.
    std::string TakeFiles(int count, const char* name = "a.sound")
    {
        std::string letters;
        for (int i = 0; i < count; ++i) {
            const int id = group->New2DSound(name, &database);
            letters += Sound::GetState(id).fileName.GetView().front();
            group->DeleteSound(id);
        }
        return letters;
    }

    /// Ends the system and starts it anew with a seed; the resources stay as they are.
    void Restart(const char* seed)
    {
        group.reset();
        microphone.reset();
        system.Done();
        SetOption("SoundSeed", seed);
        ASSERT_TRUE(HostTest::Start());
        group = std::make_unique<Sound>();
    }
};

TEST_F(Variation, TakesAnotherFileAtEachStart)
{
    Define("a.sound", threeFiles);
    Define("turn.sound", std::string(threeFiles) + "*VARIANT_ORDER sequence");
    const std::string random = TakeFiles(60);
    EXPECT_EQ(random.find("aa"), std::string::npos);
    EXPECT_EQ(random.find("bb"), std::string::npos);
    EXPECT_EQ(random.find("cc"), std::string::npos);
    for (const char letter : {'a', 'b', 'c'}) {
        EXPECT_GT(std::ranges::count(random, letter), 10) << letter;
    }
    EXPECT_EQ(TakeFiles(7, "turn.sound"), "abcabca");
    // The turn is the definition's, whoever starts it.
    Sound other;
    const int id = other.New3DSound("turn.sound", &database);
    EXPECT_EQ(Sound::GetState(id).fileName, PString("b.wav"));
    Music music;
    EXPECT_TRUE(music.Play("turn.sound", &database, false));
    EXPECT_EQ(music.GetState().fileName, PString("c.wav"));
    const int queue = group->New2DSound("turn.sound", &database);
    EXPECT_TRUE(group->CatSound(queue, "turn.sound", &database));
    EXPECT_EQ(TakeFiles(1, "turn.sound"), "c");
}

TEST_F(Variation, IsTheSameForTheSameSeedWhateverElseIsStarted)
{
    Define("a.sound", threeFiles);
    Define("b.sound", threeFiles);
    Restart("0");
    const std::string first = TakeFiles(40);
    Restart("0");
    std::string again;
    for (int i = 0; i < 40; ++i) {
        TakeFiles(i % 3, "b.sound");
        again += TakeFiles(1);
    }
    EXPECT_EQ(again, first);
    Restart("-7");
    EXPECT_NE(TakeFiles(40), first);
}

// From a program in another language that follows the same published formulas.
TEST_F(Variation, IsTheSameOnEveryPlatform)
{
    struct Row
    {
        const char* file;
        float gain;
        unsigned long hz;
    };
    const Row rows[] = {
        {"a.wav", 0.6072998046875F, 1095},
        {"b.wav", 0.577239990234375F, 1176},
        {"a.wav", 0.29571533203125F, 845},
        {"c.wav", 0.3716583251953125F, 939},
        {"a.wav", 0.3608551025390625F, 925},
    };
    Define("a.sound", std::string(threeFiles) + "*GAIN 0.5\n*GAIN_RANGE 2 -6\n*FREQUENCY_RANGE 0.8 1.25");
    for (const Row& row : rows) {
        const int id = Start("a.sound", Sound::StartImmediately);
        EXPECT_EQ(Sound::GetState(id).fileName, PString(row.file));
        EXPECT_EQ(group->GetSoundGain(id), row.gain);
        EXPECT_EQ(group->GetFrequency(id), row.hz) << "the rate of the file is 1000 Hz";
        EXPECT_EQ(TakeLog({("c" + std::to_string(ChannelOf(id)) + " SetFrequency").c_str()}).size(), 1U);
    }
}

TEST_F(Variation, OfGainAndRateStaysWithinWhatASoundCanHave)
{
    Define("loud.sound", "*GAIN_RANGE 6 12");
    Define("fast.sound", "*FREQUENCY 90000\n*FREQUENCY_RANGE 2 3");
    Define("line.sound",
        "*FREQUENCY_RANGE 1.5 2\n*MAX_INSTANCES 1\n*POLYLINE {\n*NUM_ADD_SOUNDS 2\n*ANGLE 20\n*POINT -9 0 3\n"
        "*POINT 9 0 3\n}");
    EXPECT_EQ(group->GetSoundGain(Start("loud.sound")), 1.0F);
    EXPECT_EQ(group->GetFrequency(Start("fast.sound")), 100000U);
    // What the game asks for counts, as for any sound.
    const int own = group->New2DSound("fast.sound", &database);
    EXPECT_TRUE(group->SetFrequency(own, 500));
    EXPECT_TRUE(group->StartSound(own, Sound::StartImmediately));
    EXPECT_EQ(group->GetFrequency(own), 500U);
    // All sources of a line play at one rate, and a line counts as one.
    const int line = StartAt(0.0F, "line.sound");
    Step(40);
    const auto* head = static_cast<const SndPolyline*>(Find(line));
    std::set<unsigned long> rates;
    for (int i = 0; i < head->GetNumSounds(); ++i) {
        rates.insert(Find(static_cast<int>(head->GetSourceID(i)))->GetFrequency());
    }
    EXPECT_EQ(head->GetNumSounds(), 3);
    ASSERT_EQ(rates.size(), 1U);
    EXPECT_GE(*rates.begin(), 1500U);
    const int next = StartAt(0.0F, "line.sound");
    EXPECT_EQ(Find(line), nullptr);
    EXPECT_NE(Find(next), nullptr);
}

TEST_F(Variation, OfOneSoundGivesWayAsTheDefinitionSays)
{
    struct Row
    {
        const char* stealing;
        Ids starts; ///< Distances, in the order of their starts.
        Ids left;
    };
    const Row rows[] = {
        {"*STEALING oldest", {5, 50, 20, 90}, {20, 90}},
        {"", {5, 50, 20, 90}, {20, 90}},
        {"*STEALING none", {5, 50, 20, 90}, {5, 50}},
        {"*STEALING quietest", {5, 90, 20, 50, 15}, {5, 15}},
        // The new one is the quietest, and among equals the older one gives way.
        {"*STEALING quietest", {20, 20, 30, 20}, {20, 20}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.stealing);
        Define("a.sound", std::string("*MAX_INSTANCES 2\n*MIN_DISTANCE 10\n") + row.stealing);
        database.ReloadChanged();
        std::vector<std::pair<int, int>> started;
        for (const int distance : row.starts) {
            if (const int id = StartAt(static_cast<float>(distance))) {
                started.emplace_back(id, distance);
            }
            Step(40);
        }
        Ids left;
        for (const auto& [id, distance] : started) {
            if (Find(id)) {
                left.push_back(distance);
            }
        }
        EXPECT_EQ(left, row.left);
        SoundSystem::StopAll();
    }
}

TEST_F(Variation, CountsRunningSoundsAndReportsWhyAStartIsRefused)
{
    Define("a.sound", "*MAX_INSTANCES 2\n*STEALING none");
    const int prepared = group->New2DSound("a.sound", &database);
    const int first = Start();
    const int second = Start();
    EXPECT_NE(second, 0);
    MessageLog log(os);
    EXPECT_EQ(Start(), 0);
    EXPECT_NE(
        log.Take().find("('a.wav') is not started: there are already 2 running sounds of its definition "
                        "'a.sound'\n"),
        std::string::npos);
    EXPECT_FALSE(group->StartSound(prepared, 0)) << "and is still there:";
    Step(40);
    // One that fades out counts no more, nor one that has ended or could not start.
    EXPECT_TRUE(group->FadeOutSound(first, 500));
    EXPECT_TRUE(group->StartSound(prepared, 0));
    EXPECT_EQ(Start(), 0);
    group->StopSound(second);
    system.SetMaxAudibleSounds(0);
    EXPECT_EQ(Start("a.sound", Sound::StartImmediately), 0);
    EXPECT_NE(Start(), 0);
}

TEST_F(Variation, RefusesAStartThatFollowsTooClosely)
{
    Define("a.sound", "*MIN_INTERVAL 100");
    Define("b.sound", "*MIN_INTERVAL 100");
    EXPECT_NE(Start(), 0);
    EXPECT_NE(Start("b.sound"), 0);
    MessageLog log(os);
    EXPECT_EQ(Start(), 0);
    EXPECT_NE(log.Take().find("less than 100 ms have passed since the last start of a sound of its "
                              "definition 'a.sound'"),
        std::string::npos);
    // Between full updates time counts too.
    StepTimes(3, 33);
    EXPECT_EQ(Start(), 0);
    Step(1);
    EXPECT_NE(Start(), 0);
    // A start that fails does not count.
    StepTimes(3, 40);
    folder.Remove("a.wav");
    Define("c.sound", "*FILE c.wav\n*MIN_INTERVAL 100");
    system.SetMaxAudibleSounds(0);
    EXPECT_EQ(Start("c.sound", Sound::StartImmediately), 0);
    system.SetMaxAudibleSounds(20);
    EXPECT_NE(Start("c.sound", Sound::StartImmediately), 0);
}

TEST_F(Variation, SurvivesObserversThatActWhenASoundGivesWay)
{
    Define("a.sound", "*MAX_INSTANCES 2");
    const auto react = [this](const std::function<void()>& act) {
        observer->react = [act](const Note& note) {
            if (note.kind == Note::Abort || note.kind == Note::End) {
                act();
            }
        };
    };
    const auto count = [] { return static_cast<int>(SoundSystem::Inspect({})); };
    Start();
    Start();
    // What is started in answer takes the place; however many are asked for, two run.
    react([this] {
        for (int i = 0; i < 3; ++i) {
            Start();
        }
    });
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(count(), 2);
    // The new sound is deleted.
    int prepared = group->New2DSound("a.sound", &database);
    react([&] { group->DeleteSound(prepared); });
    EXPECT_FALSE(group->StartSound(prepared, 0));
    EXPECT_EQ(count(), 1);
    EXPECT_NE(Start(), 0);
    // Everything is stopped.
    react([] { SoundSystem::StopAll(); });
    Start();
    EXPECT_LE(count(), 2);
    // The group is destroyed.
    SoundSystem::StopAll();
    observer->react = nullptr;
    Sound keeper;
    keeper.Play2DSound("a.sound", &database, 0, 0, 0);
    LoggingObserver other(*names);
    keeper.AddObserver(&other);
    Start();
    other.react = [this](const Note& note) {
        if (note.kind == Note::Abort) {
            group.reset();
        }
    };
    prepared = group->New2DSound("a.sound", &database);
    Sound* const going = group.get();
    EXPECT_FALSE(going->StartSound(prepared, 0));
    EXPECT_EQ(group, nullptr);
    EXPECT_EQ(count(), 0);
    keeper.RemoveObserver(&other);
}

} // namespace
} // namespace Quon
