// The messages for calls that fail.

#include "tests/instances/WithResources.h"
#include "tests/support/MessageLog.h"
#include "tests/support/SoundTest.h"

namespace Quon
{
namespace
{

using Reasons = WithResources<SoundTest>;

TEST_F(Reasons, AreReportedForStartsThatFail)
{
    const PString file = WriteWave("a.wav", {2000});
    folder.Write("bad.sound", "*SOUND_DEFINITION\n{\n*GAIN loud\n}\n");
    MessageLog log(os);
    EXPECT_EQ(group->Play2DSound("missing.wav", nullptr, 0, 0, 0), 0);
    EXPECT_EQ(log.Take(), "E sound file 'missing.wav' of owner '' does not exist\n");
    EXPECT_EQ(group->Play2DSound("missing.sound", &database, 0, 0, 0), 0);
    EXPECT_EQ(log.Take(),
        "E resource 'missing.sound' does not exist: no folder has a file of this name, or no resource type "
        "has its extension\n");
    EXPECT_EQ(group->Play2DSound("bad.sound", &database, 0, 0, 0), 0);
    EXPECT_EQ(log.Take(),
        "W definition 'bad.sound' of owner 'sounds', line 3: *GAIN: expected a number, got 'loud'; "
        "reading stops here\n"
        "E definition 'bad.sound' of owner 'sounds': *FILE does not name a sound file\n"
        "E resource 'bad.sound' of owner 'sounds' cannot be loaded\n");
    system.SetMaxAudibleSounds(0);
    EXPECT_EQ(group->Play2DSound(file, nullptr, Sound::StartImmediately, 0, 0), 0);
    EXPECT_NE(log.Take().find("('a.wav') is not started: it needs a channel now"), std::string::npos);
    EXPECT_FALSE(group->StartSound(1 << 30, 0));
    EXPECT_EQ(log.Take(), "E sound 1073741824 is not started: it has ended\n");
    const int id = group->Play2DSound(file, nullptr, 0, 0, 0);
    EXPECT_NE(id, 0);
    EXPECT_EQ(log.Take(), "");
    system.Done();
    EXPECT_EQ(group->New2DSound(file, nullptr), 0);
    EXPECT_EQ(log.Take(), "E a sound cannot be created: the sound system is not running\n");
}

TEST_F(Reasons, AreReportedForStartsOfTheSystem)
{
    MessageLog log(os);
    EXPECT_FALSE(Start());
    EXPECT_EQ(log.Take(), "E the sound system is already running\n");
    system.Done();
    SetOption("MaxSounds", "-3");
    SetOption("MaxSound", "30");
    SetOption("SoundFrequency", "44100.0");
    SetOption("Sound", "HarmonetNoDriver");
    recording.refuseOpen = true;
    EXPECT_FALSE(Start());
    const std::string options =
        "W option SoundFrequency=44100.0: expected a 32-bit integer; using the default 22050\n"
        "W option MaxSounds=-3: the minimum is 0; using the default 20\n";
    EXPECT_EQ(log.Take(),
        options + "W sound driver 'HarmonetNoDriver" + dynamicLibrarySuffix +
            "' is not a driver: it does not export CreateSoundDriver\n"
            "E the sound system does not start: none of the drivers that the option Sound names can be "
            "used\n");
    SetOption("Sound", "HarmonetRecording");
    EXPECT_FALSE(Start());
    EXPECT_NE(log.Take().find("' does not open its output\n"), std::string::npos);
    recording.refuseOpen = false;
    EXPECT_TRUE(Start());
    EXPECT_EQ(log.Take(),
        options + "N sound driver 'HarmonetRecording" + dynamicLibrarySuffix + "' is open\n" +
            "N option MaxSound=30: no option of this name has been read so far\n");
}

} // namespace
} // namespace Quon
