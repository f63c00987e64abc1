// A definition as text in, its settings out: the keywords of the definition itself.

#include "tests/definitions/DefinitionTest.h"

namespace Quon
{

namespace
{

using TextSettings = DefinitionTest;

TEST_F(TextSettings, EachKeywordReachesItsSetting)
{
    const Row rows[] = {
        {"only a file", "", "0: a.wav"},
        {"looping", "*LOOPING true", "0: a.wav, looping 1"},
        {"gain", "*GAIN 0.25", "0: a.wav, gain 0.25"},
        {"delay", "*DELAY 250", "0: a.wav, delay 250"},
        {"distances", "*MIN_DISTANCE 5\n*MAX_DISTANCE 120.5", "0: a.wav, min 5, max 120.5"},
        {"no cutout", "*CUTOUT false", "0: a.wav, cutout 0"},
        {"cone", "*INNER_CONE_ANGLE 60\n*OUTER_CONE_ANGLE 120\n*CONE_GAIN 0.5",
            "0: a.wav, inner 60, outer 120, conegain 0.5"},
        {"position", "*POSITION 1 -2.5 3e1", "0: a.wav, at 1 -2.5 30"},
        {"changing rate", "*SET_FRQUENCY true", "0: a.wav, changing 1"},
        {"without the listener's effects", "*DISABLE_ENV_FX true", "0: a.wav, dry 1"},
        {"nothing is clamped", "*GAIN 7\n*MIN_DISTANCE -1\n*CONE_GAIN -3",
            "0: a.wav, gain 7, min -1, conegain -3"},
        {"the last of two", "*GAIN 0.5\n*GAIN 0.75", "0: a.wav, gain 0.75"},
        {"unknown keywords are passed over", "*SET_FREQUENCY true\n*COLOUR red { *GAIN 0.1 }\n*GAIN 0.5",
            "0: a.wav, gain 0.5"},
        {"a block behind a plain keyword is passed over", "*LOOPING true { *GAIN 0.1 }\n*DELAY 1",
            "0: a.wav, looping 1, delay 1"},
        {"the keywords of a block do not count outside", "*POINT 1 2 3\n*ANGLE 9\n*WETDRYMIX 1", "0: a.wav"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LoadBlock(row.text), row.expected);
    }
}

TEST_F(TextSettings, AFrequencyCountsFrom100To100000AndAsksForAChangingRateUnlessThereAreEffects)
{
    const Row rows[] = {
        {"below", "*FREQUENCY 99", "0: a.wav"},
        {"least", "*FREQUENCY 100", "0: a.wav, changing 1, hz 100"},
        {"most", "*FREQUENCY 100000", "0: a.wav, changing 1, hz 1e+05"},
        {"above", "*FREQUENCY 100001", "0: a.wav"},
        {"out of range after a good one", "*FREQUENCY 22050\n*FREQUENCY 5", "0: a.wav, changing 1"},
        {"reading goes on", "*FREQUENCY 99\n*GAIN 0.5", "0: a.wav, gain 0.5"},
        {"the flag can be taken back", "*FREQUENCY 22050\n*SET_FRQUENCY false", "0: a.wav, hz 22050"},
        {"not a number", "*FREQUENCY 22050\n*FREQUENCY high\n*GAIN 0.5", "0: a.wav, changing 1"},
        {"an effect takes it away", "*FREQUENCY 22050\n*FX_GARGLE", "0: a.wav, gargle(20 0)"},
        {"in any order", "*FX_GARGLE\n*SET_FRQUENCY true\n*FREQUENCY 22050", "0: a.wav, gargle(20 0)"},
        {"the flag decides, not the frequency", "*FREQUENCY 22050\n*SET_FRQUENCY false\n*FX_GARGLE",
            "0: a.wav, hz 22050, gargle(20 0)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LoadBlock(row.text), row.expected);
    }
}

TEST_F(TextSettings, ABadValueEndsTheReadingAndKeepsWhatCameBefore)
{
    const Row rows[] = {
        {"word for a number", "*DELAY 9\n*GAIN loud\n*LOOPING true", "0: a.wav, delay 9"},
        {"no value", "*DELAY 9\n*GAIN\n*LOOPING true", "0: a.wav, delay 9"},
        {"a value is not taken from the next line", "*GAIN\n0.5\n*LOOPING true", "0: a.wav"},
        {"fraction for a whole number", "*DELAY 1.5\n*LOOPING true", "0: a.wav"},
        {"neither true nor false", "*LOOPING maybe\n*GAIN 0.5", "0: a.wav"},
        {"negative delay", "*DELAY 9\n*DELAY -1\n*GAIN 0.5", "0: a.wav"},
        {"position of two numbers", "*POSITION 1 2\n*GAIN 0.5", "0: a.wav, at 1 2 0"},
        {"position of two numbers and a word", "*POSITION 7 8 9\n*POSITION 1 2 x\n*GAIN 0.5",
            "0: a.wav, at 1 2 9"},
        {"an effect that cannot be read", "*FX_ECHO { *FEEDBACK much }\n*GAIN 0.5", "0: a.wav"},
        {"a line that cannot be read", "*POLYLINE { *POINT 1 2 }\n*GAIN 0.5", "0: a.wav"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LoadBlock(row.text), row.expected);
    }
}

TEST_F(TextSettings, TheFileDecidesWhetherADefinitionLoads)
{
    const Row rows[] = {
        {"empty file", " ", "1: "},
        {"no definition", "*FILE a.wav\n*OTHER { *FILE a.wav }", "1: "},
        {"no block", "*SOUND_DEFINITION\n*FILE a.wav", "1: "},
        {"no file in it", "*SOUND_DEFINITION { *GAIN 0.5 }", "1: gain 0.5"},
        {"a bad value in front", "*SOUND_DEFINITION { *GAIN x\n*FILE a.wav }", "1: "},
        {"a file without a name", "*SOUND_DEFINITION {\n*FILE\n*GAIN 0.5\n}", "1: "},
        {"text in front", "*OTHER { *FILE b.wav }\n*SOUND_DEFINITION { *FILE c.wav }", "0: c.wav"},
        {"the first definition", "*SOUND_DEFINITION { *FILE a.wav }\n*SOUND_DEFINITION { *FILE b.wav }",
            "0: a.wav"},
        {"nothing behind it", "*SOUND_DEFINITION { *FILE a.wav }\n*GAIN 0.5", "0: a.wav"},
        {"the last of two files", "*SOUND_DEFINITION {\n*FILE a.wav\n*FILE \"b c.wav\"\n}", "0: b c.wav"},
        {"the last of two files without a name", "*SOUND_DEFINITION {\n*FILE a.wav\n*FILE\n*GAIN 0.5\n}",
            "1: a.wav"},
        {"the end of the file ends the block", "*SOUND_DEFINITION {\n*FILE a.wav\n*GAIN 0.5",
            "0: a.wav, gain 0.5"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
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
    folder.Remove("a.sound.txt");
    EXPECT_EQ(LoadAgain(), 1);
    EXPECT_EQ(Describe(GetDefinition()), "a.wav, gain 0.5, line(2 45:)");
    EXPECT_EQ(GetDefinition().GetPolyline(), nullptr);
}

TEST_F(TextSettings, OnlyTheTextEntryLoads)
{
    LoadBlock("*GAIN 0.5");
    std::string path = "a.sound.txt";
    EXPECT_EQ(GetDefinition().Load(&database, path.data()).GetCode(), 6);
    EXPECT_EQ(Describe(GetDefinition()), "a.wav, gain 0.5");
}

} // namespace

} // namespace Quon
