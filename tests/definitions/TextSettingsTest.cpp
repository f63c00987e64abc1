// A definition as text in, its settings out.

#include "tests/definitions/DefinitionTest.h"

#include "harmonet/definitions/EnvReverbPresets.h"

namespace Quon
{

namespace
{

using TextSettings = DefinitionTest;

TEST_F(TextSettings, EachKeywordReachesItsSetting)
{
    CheckBlocks({
        {"", ""},
        {"*LOOPING true", "looping 1"},
        {"*GAIN 0.25", "gain 0.25"},
        {"*DELAY 250", "delay 250"},
        {"*MIN_DISTANCE 5\n*MAX_DISTANCE 120.5", "min 5, max 120.5"},
        {"*CUTOUT false", "cutout 0"},
        {"*INNER_CONE_ANGLE 60\n*OUTER_CONE_ANGLE 120\n*CONE_GAIN 0.5", "inner 60, outer 120, conegain 0.5"},
        {"*POSITION 1 -2.5 3e1", "at 1 -2.5 30"},
        {"*SET_FRQUENCY true", "changing 1"},
        {"*DISABLE_ENV_FX true", "dry 1"},
        // Nothing is clamped.
        {"*GAIN 7\n*MIN_DISTANCE -1\n*CONE_GAIN -3", "gain 7, min -1, conegain -3"},
        {"*GAIN 0.5\n*GAIN 0.75", "gain 0.75"},
        // Unknown keywords are passed over, and blocks behind plain ones.
        {"*SET_FREQUENCY true\n*COLOUR red { *GAIN 0.1 }\n*GAIN 0.5", "gain 0.5"},
        {"*LOOPING true { *GAIN 0.1 }\n*DELAY 1", "looping 1, delay 1"},
        {"*POINT 1 2 3\n*ANGLE 9\n*WETDRYMIX 1", ""},
    });
}

TEST_F(TextSettings, AFrequencyCountsFrom100To100000AndAsksForAChangingRateUnlessThereAreEffects)
{
    CheckBlocks({
        {"*FREQUENCY 99\n*GAIN 0.5", "gain 0.5"},
        {"*FREQUENCY 100", "changing 1, hz 100"},
        {"*FREQUENCY 100000", "changing 1, hz 1e+05"},
        {"*FREQUENCY 100001", ""},
        {"*FREQUENCY 22050\n*FREQUENCY 5", "changing 1"},
        {"*FREQUENCY 22050\n*SET_FRQUENCY false", "hz 22050"},
        {"*FREQUENCY 22050\n*FREQUENCY high\n*GAIN 0.5", "changing 1"},
        {"*FREQUENCY 22050\n*FX_GARGLE", "gargle(20 0)"},
        {"*FX_GARGLE\n*SET_FRQUENCY true\n*FREQUENCY 22050", "gargle(20 0)"},
        {"*FREQUENCY 22050\n*SET_FRQUENCY false\n*FX_GARGLE", "hz 22050, gargle(20 0)"},
    });
}

TEST_F(TextSettings, ABadValueEndsTheReadingAndKeepsWhatCameBefore)
{
    CheckBlocks({
        {"*DELAY 9\n*GAIN loud\n*LOOPING true", "delay 9"},
        {"*GAIN\n0.5\n*LOOPING true", ""},
        {"*DELAY 1.5\n*LOOPING true", ""},
        {"*LOOPING maybe\n*GAIN 0.5", ""},
        {"*DELAY 9\n*DELAY -1\n*GAIN 0.5", ""},
        {"*POSITION 1 2\n*GAIN 0.5", "at 1 2 0"},
        {"*POSITION 7 8 9\n*POSITION 1 2 x\n*GAIN 0.5", "at 1 2 9"},
        {"*FX_ECHO { *FEEDBACK much }\n*GAIN 0.5", ""},
    });
}

TEST_F(TextSettings, AnEffectHasOneEntryInTheOrderOfItsFirstAppearance)
{
    CheckBlocks({
        {"*FX_GARGLE\n*FX_ECHO", "gargle(20 0), echo(50 50 500 500 0)"},
        // The second block begins anew; one that fails leaves the first.
        {"*FX_ECHO { *FEEDBACK 30 }\n*FX_GARGLE\n*FX_ECHO { *LEFTDELAY 9 }",
            "echo(50 50 9 500 0), gargle(20 0)"},
        {"*FX_ECHO { *FEEDBACK 30 }\n*FX_ECHO { *FEEDBACK x }\n*FX_GARGLE", "echo(50 30 500 500 0)"},
        {"*FX_ECHO { *WAVEFORM 1\n*RATEHZ 5\n*FEEDBACK 2 }", "echo(50 2 500 500 0)"},
        {"*FX_CHORUS {\n*FREQUENCY 1.5\n*DELAY 3\n}\n*FX_PARAMEQ { *GAIN 4 }",
            "chorus(50 10 25 1.5 1 3 3), parameq(7350 12 4)"},
        {"*FX_GARGLE\n*FX_CHORUS { *WAVEFORM 1.0 }\n*FX_ECHO", "gargle(20 0)"},
    });
    const FXEnvReverb before = fxEnvReverbDefault;
    fxEnvReverbDefault.room = -7;
    CheckBlocks({{"*FX_ENVREVERB { *ROOMHF -8 }",
        "envreverb/2(-7 -8 0 1.49 0.83 -2602 0.007 200 0.011 100 100 5000)"}});
    fxEnvReverbDefault = before;
}

TEST_F(TextSettings, ALineHasItsPointsInTheOrderOfTheTextAndNoneIfItFails)
{
    const std::string good = "*POLYLINE {\n*POINT 0 0 0\n*POINT 1 0 0\n}\n";
    CheckBlocks({
        {"*POLYLINE {\n*POINT 0 0 0\n*POINT 100 0 0.5\n}", "line(0 45: 0 0 0 100 0 0.5)"},
        {"*POLYLINE {\n*POINT 1 2 3\n*ANGLE -90\n*POINT 4 5 6\n*NUM_ADD_SOUNDS 9\n}",
            "line(9 -90: 1 2 3 4 5 6)"},
        {good + "*POLYLINE {\n*ANGLE 9\n*POINT 2 0 0\n*POINT 3 0 0\n}", "line(0 9: 2 0 0 3 0 0)"},
        {"*POLYLINE\n*GAIN 0.5", ""},
        {"*POLYLINE {}\n*GAIN 0.5", ""},
        {"*POLYLINE { *POINT 0 0 0 }\n*GAIN 0.5", ""},
        {"*POLYLINE {\n*POINT 0 0 0\n*POINT 1 1\n1\n*POINT 2 2 2\n}\n*GAIN 0.5", ""},
        {"*POLYLINE {\n*NUM_ADD_SOUNDS -1\n*POINT 0 0 0\n*POINT 1 1 1\n}\n*GAIN 0.5", ""},
        {"*POLYLINE {\n*NUM_ADD_SOUNDS 3\n*ANGLE 20\n*POINT 1 x\n}", "line(3 20:)"},
        {good + "*POLYLINE { *POINT 1 }", ""},
        {good + "*POLYLINE", ""},
    });
}

TEST_F(TextSettings, TheFileDecidesWhetherADefinitionLoads)
{
    const Row rows[] = {
        {"*FILE a.wav\n*OTHER { *FILE a.wav }", "1: "},
        {"*SOUND_DEFINITION\n*FILE a.wav", "1: "},
        {"*SOUND_DEFINITION { *GAIN 0.5 }", "1: gain 0.5"},
        {"*SOUND_DEFINITION { *GAIN x\n*FILE a.wav }", "1: "},
        {"*SOUND_DEFINITION {\n*FILE\n*GAIN 0.5\n}", "1: "},
        {"*OTHER { *FILE b.wav }\n*SOUND_DEFINITION { *FILE c.wav }\n*GAIN 0.5", "0: c.wav"},
        {"*SOUND_DEFINITION { *FILE a.wav }\n*SOUND_DEFINITION { *FILE b.wav }", "0: a.wav"},
        {"*SOUND_DEFINITION {\n*FILE a.wav\n*FILE \"b c.wav\"\n}", "0: b c.wav"},
        {"*SOUND_DEFINITION {\n*FILE a.wav\n*FILE\n*GAIN 0.5\n}", "1: a.wav"},
        {"*SOUND_DEFINITION {\n*FILE a.wav\n*GAIN 0.5", "0: a.wav, gain 0.5"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        Forget();
        EXPECT_EQ(Load(row.text), row.expected);
    }
}

TEST_F(TextSettings, ALoadBeginsWithTheDefaultsExceptForTheFileName)
{
    LoadBlock("*GAIN 0.5\n*LOOPING true\n*FX_GARGLE\n*POLYLINE { *ANGLE 1\n*POINT 0 0 0\n*POINT 1 0 0 }");
    EXPECT_EQ(Load("*SOUND_DEFINITION { *DELAY 5 }"), "1: a.wav, delay 5");
}

TEST_F(TextSettings, AFileThatCannotBeOpenedTakesEffectsAndPointsAwayAndNothingElse)
{
    LoadBlock("*GAIN 0.5\n*FX_GARGLE\n*POLYLINE { *NUM_ADD_SOUNDS 2\n*POINT 0 0 0\n*POINT 1 0 0 }");
    std::string path = "a.sound.txt";
    EXPECT_EQ(GetDefinition().Load(&database, path.data()).GetCode(), 6) << "only the text entry loads";
    folder.Remove(path);
    EXPECT_EQ(LoadAgain(), 1);
    EXPECT_EQ(Describe(GetDefinition()), "a.wav, gain 0.5, line(2 45:)");
}

} // namespace

} // namespace Quon
