// Definitions that are cut off, damaged or made up of anything.

#include "tests/definitions/DefinitionTest.h"

#include <cmath>
#include <random>

namespace Quon
{

namespace
{

using TextHostile = DefinitionTest;

constexpr const char* wholeDefinition = R"(*SOUND_DEFINITION
{
    *FILE engine_loop.wav
    *LOOPING true
    *GAIN 0.8
    *CUTOUT false
    *DELAY 250
    *POSITION 1.5 2.5 3.5
    *FX_ECHO
    {
        *FEEDBACK 30.0
    }
    *POLYLINE
    {
        *NUM_ADD_SOUNDS 2
        *ANGLE 90.0
        *POINT 0.0 0.0 0.0
        *POINT 100.0 0.0 0.0
        *POINT 100.0 0.0 50.0
    }
}
)";

// What holds for any definition, loaded or not.
void ExpectSane(const SoundResource& sound)
{
    EXPECT_FALSE(sound.GetChgFrequency() && sound.GetFXList().GetNumEffects() > 0);
    EXPECT_GE(sound.GetDelay(), 0);
    EXPECT_GE(sound.GetNumAddSounds(), 0);
    EXPECT_TRUE(sound.GetFrequency() == 0 || (sound.GetFrequency() >= 100 && sound.GetFrequency() <= 100000));
    EXPECT_NE(sound.GetNumPoints(), 1);
    for (int i = 0; i < sound.GetNumPoints(); ++i) {
        EXPECT_TRUE(std::isfinite(sound.GetPolyline()[i].x + sound.GetPolyline()[i].z));
    }
    EXPECT_TRUE(std::isfinite(sound.GetGain()));
}

// A full disk or a broken copy leaves any prefix. It loads as soon as there is a name for the sound file, and
// what it holds is what the prefix says.
TEST_F(TextHostile, EveryTruncationLoadsOnceTheFileIsNamed)
{
    const std::string text = wholeDefinition;
    const std::string name = "engine_loop.wav";
    const std::size_t nameAt = text.find(name);
    for (std::size_t kept = 1; kept <= text.size(); ++kept) {
        SCOPED_TRACE("kept " + std::to_string(kept) + " bytes");
        Forget();
        Load(text.substr(0, kept));
        const bool isNamed = kept > nameAt;
        EXPECT_EQ(LoadAgain() == 0, isNamed);
        const std::size_t nameLength = isNamed ? std::min(kept - nameAt, name.size()) : 0;
        EXPECT_EQ(GetDefinition().GetFileName().GetView(), name.substr(0, nameLength));
        EXPECT_EQ(GetDefinition().GetLooping(), kept >= text.find("true") + 4);
        EXPECT_LE(GetDefinition().GetNumPoints(), 3);
        ExpectSane(GetDefinition());
    }
}

TEST_F(TextHostile, DamagedDefinitionsLeaveValidSettings)
{
    std::mt19937 random(20);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    constexpr const char* pieces[] = {"{", "}", "\"", "*POLYLINE", "*POINT 1 2 3\n", "*POINT nan inf 1e99\n",
        "*FX_CHORUS", "*FREQUENCY 22050\n", "*DELAY -1\n", "*DELAY 99999999999\n", "*FILE b.wav\n", "\n",
        "//", "*NUM_ADD_SOUNDS -5\n", "*GAIN 1e39\n", "*SET_FRQUENCY true\n", "*FX_ENVREVERB { *ROOM 1 }"};
    for (int round = 0; round < 500; ++round) {
        std::string text = wholeDefinition;
        for (std::size_t changes = 1 + below(6); changes > 0; --changes) {
            const std::size_t place = below(text.size());
            if (below(2) == 0) {
                text[place] = static_cast<char>(below(256));
            }
            else {
                text.insert(place, pieces[below(std::size(pieces))]);
            }
        }
        SCOPED_TRACE("round " + std::to_string(round));
        Load(text);
        ExpectSane(GetDefinition());
    }
}

} // namespace

} // namespace Quon
