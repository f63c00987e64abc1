#include "tests/failures/FailureTest.h"

#include "harmonet/engine/TaskList.h"
#include "harmonet/instances/SoundPreload.h"

namespace Quon
{

namespace
{

constexpr int mostSteps = 500;

bool PlayFile(SmallGame& game, const char* name, int flags)
{
    return game.group.Play2DSound(name, nullptr, flags, 0, 0) != 0;
}

bool PlayResource(SmallGame& game, const char* name, int flags)
{
    const Sound::Settings settings;
    const Vector3 position{1.0F, 0.0F, 0.0F};
    return game.group.Play3DSound(position, name, &game.folder.GetDatabase(), flags, 0, settings, 0) != 0;
}

// With settings that take memory of their own.
bool PlayTurned(SmallGame& game)
{
    const Quaternion turned{0.0F, 1.0F, 0.0F, 0.0F};
    Sound::Settings settings;
    settings.setCone = true;
    settings.innerConeAngle = 90.0F;
    const int id =
        game.group.Play3DSound(Vector3(), turned, "a.wav", nullptr, Sound::StartImmediately, 0, settings, 20);
    const bool isDone = id != 0 && game.group.FadeOutSound(id, 100);
    game.group.StopSound(id);
    return isDone;
}

bool PlayBlock(SmallGame& game)
{
    MemoryBlock& block = game.folder.GetBlocks().front();
    return game.group.Play2DSound(block.GetData(), block.GetSize(), &block.format, 0, 0, 0) != 0;
}

bool Append(SmallGame& game)
{
    const int id = game.group.New2DSound("a.wav", nullptr);
    const bool isDone = id != 0 && game.group.CatSound(id, "b.wav", nullptr) && game.group.StartSound(id, 0);
    if (!isDone) {
        game.group.DeleteSound(id);
    }
    return isDone;
}

bool LoadAhead(SmallGame& game)
{
    SoundPreload preload;
    return preload.Add("steps.sound.txt", &game.folder.GetDatabase()) && preload.Add("adpcm.wav", nullptr) &&
        preload.GetFileCount() == 4;
}

bool AddEffects(SmallGame& game)
{
    const FXEcho echo{};
    const FXChorus chorus{};
    const int id = game.group.New2DSound("a.wav", nullptr);
    const bool isDone = id != 0 && game.group.SetFXEcho(id, &echo) && game.group.SetFXChorus(id, &chorus);
    game.group.DeleteSound(id);
    return isDone;
}

} // namespace

const std::vector<FallibleAction> fallibleActions = {
    {"start-up", false, nullptr, [](SmallGame& game) { return game.Start(); }},
    {"a wave file", true, nullptr, [](SmallGame& game) { return PlayFile(game, "a.wav", 0); }},
    {"an ADPCM file at once", true, nullptr,
        [](SmallGame& game) { return PlayFile(game, "adpcm.wav", Sound::StartImmediately); }},
    {"an MPEG file at once", true, nullptr,
        [](SmallGame& game) { return PlayFile(game, "tune.mp3", Sound::StartImmediately); }},
    {"cached PCM", true, "a.wav", [](SmallGame& game) { return PlayFile(game, "a.wav", 0); }},
    {"cached ADPCM", true, "adpcm.wav", [](SmallGame& game) { return PlayFile(game, "adpcm.wav", 0); }},
    {"a cached MPEG stream", true, "tune.mp3", [](SmallGame& game) { return PlayFile(game, "tune.mp3", 0); }},
    {"a resource", true, nullptr, [](SmallGame& game) { return PlayResource(game, "a.wav", 0); }},
    {"a definition with effects", true, nullptr,
        [](SmallGame& game) { return PlayResource(game, "hall.sound.txt", Sound::StartImmediately); }},
    {"a turned sound with a cone and a delay, which fades out", true, nullptr, PlayTurned},
    {"a line", true, nullptr, [](SmallGame& game) { return PlayResource(game, "river.sound.txt", 0); }},
    {"a definition that varies and has limits", true, nullptr,
        [](SmallGame& game) { return PlayResource(game, "steps.sound.txt", 0); }},
    {"a preload", true, nullptr, LoadAhead},
    {"a block of memory", true, nullptr, PlayBlock},
    {"a queue", true, nullptr, Append},
    {"effects", true, nullptr, AddEffects},
    {"music", true, nullptr, [](SmallGame& game) { return game.music.FadeIn("long.wav", 100, true); }},
    {"music of a resource", true, nullptr,
        [](SmallGame& game) { return game.music.Play("hall.sound.txt", &game.folder.GetDatabase(), false); }},
    {"a length", true, nullptr, [](SmallGame&) { return Sound::CalcSoundLength("b.wav", nullptr) == 3000; }},
};

SmallGame::SmallGame(GameFolder& newFolder)
    : folder(newFolder)
{
}

bool SmallGame::StartMany()
{
    bool areStarted = true;
    for (const char* name : {"a.wav", "b.wav", "stereo.wav", "long.wav", "adpcm.wav", "tune.mp3"}) {
        areStarted = PlayFile(*this, name, 0) && areStarted;
    }
    for (const char* name : {"far.sound.txt", "river.sound.txt", "loop.sound.txt"}) {
        areStarted = PlayResource(*this, name, 0) && areStarted;
    }
    return areStarted && music.Play("long.wav", true);
}

void SmallGame::Step(int ms)
{
    TaskList::Get().Update(static_cast<float>(ms) / 1000.0F);
}

namespace
{

/// One attempt in a game of its own. Returns whether the step that was to fail was reached.
bool TryOnce(const FallibleAction& action, GameFolder& folder, int step, void (*arm)(int), bool (*disarm)())
{
    SmallGame game(folder);
    int other = 0;
    if (action.needsSystem) {
        EXPECT_TRUE(game.Start());
        game.microphone.Activate();
        other = game.group.Play2DSound("long.wav", nullptr, Sound::StartLooping, 0, 0);
        if (action.playedBefore) {
            game.group.StopSound(game.group.Play2DSound(action.playedBefore, nullptr, 0, 0, 0));
            // So that the name is looked up again.
            SmallGame::Step(50);
        }
    }
    arm(step);
    const bool isDone = action.run(game);
    const bool hasFailed = disarm();
    EXPECT_TRUE(isDone || hasFailed);
    if (!isDone) {
        EXPECT_TRUE(action.run(game)) << "a later try has to succeed";
    }
    EXPECT_TRUE(other == 0 || game.group.GetRemainLength(other) > 0) << "another sound has gone";
    SmallGame::Step(50);
    SmallGame::Step(50);
    return hasFailed;
}

} // namespace

void FailEachStep(const FallibleAction& action, void (*arm)(int step), bool (*disarm)())
{
    SCOPED_TRACE(action.name);
    GameFolder folder;
    TryOnce(action, folder, 0, arm, disarm);
    folder.DropResources();
    const std::size_t blocksBefore = Alloc::LiveBlocks();
    int step = 0;
    bool hasFailed = true;
    while (hasFailed && !testing::Test::HasFailure()) {
        ++step;
        SCOPED_TRACE("step " + std::to_string(step));
        hasFailed = TryOnce(action, folder, step, arm, disarm);
        folder.DropResources();
        EXPECT_EQ(Alloc::LiveBlocks(), blocksBefore);
        ASSERT_LT(step, mostSteps);
    }
    EXPECT_GT(step, 1) << "nothing has failed";
}

} // namespace Quon
