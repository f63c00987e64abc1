// A definition as text in, its settings out: effects and lines.

#include "tests/definitions/DefinitionTest.h"

#include "harmonet/definitions/EnvReverbPresets.h"

namespace Quon
{

namespace
{

using TextBlocks = DefinitionTest;

TEST_F(TextBlocks, EachKeywordOfAnEffectFillsItsField)
{
    const Row rows[] = {
        {"chorus",
            "*FX_CHORUS {\n*PHASE 7\n*DELAY 6.5\n*WAVEFORM 5\n*FREQUENCY 4.5\n*FEEDBACK 3\n*DEPTH "
            "2\n*WETDRYMIX 1\n}",
            "chorus(1 2 3 4.5 5 6.5 7)"},
        {"flanger",
            "*FX_FLANGER {\n*WETDRYMIX 1\n*DEPTH 2\n*FEEDBACK 3\n*FREQUENCY 4\n*WAVEFORM 5\n*DELAY 6\n*PHASE "
            "7\n}",
            "flanger(1 2 3 4 5 6 7)"},
        {"echo", "*FX_ECHO {\n*WETDRYMIX 1\n*FEEDBACK 2\n*LEFTDELAY 3\n*RIGHTDELAY 4\n*PANDELAY -5\n}",
            "echo(1 2 3 4 -5)"},
        {"distortion",
            "*FX_DISTORTION {\n*GAIN 1\n*EDGE 2\n*POSTEQCENTERFREQ 3\n*POSTEQBANDWIDTH 4\n*PRELOWPASSCUTOFF "
            "5\n}",
            "distortion(1 2 3 4 5)"},
        {"compressor",
            "*FX_COMPRESSOR {\n*GAIN 1\n*ATTACK 2\n*RELEASE 3\n*THRESHOLD 4\n*RATIO 5\n*DELAY 6\n}",
            "compressor(1 2 3 4 5 6)"},
        {"equaliser", "*FX_PARAMEQ {\n*CENTER 1\n*BANDWIDTH 2\n*GAIN 3\n}", "parameq(1 2 3)"},
        {"gargle", "*FX_GARGLE {\n*RATEHZ 1\n*WAVEFORM 2\n}", "gargle(1 2)"},
        {"waves reverb", "*FX_WAVESREVERB {\n*GAIN 1\n*REVERBMIX 2\n*REVERBTIME 3\n*HIGHFREQRTRATIO 4\n}",
            "wavesreverb(1 2 3 4)"},
        {"environmental reverb",
            "*FX_ENVREVERB {\n*ROOM 1\n*ROOMHF 2\n*ROOMROLLOFF 3\n*DECAYTIME 4\n*DECAYHFRATIO 5\n"
            "*REFLECTIONS 6\n*REFLECTIONSDELAY 7\n*REVERB 8\n*REVERBDELAY 9\n*DIFFUSION 10\n*DENSITY 11\n"
            "*HFREFERENCE 12\n}",
            "envreverb/2(1 2 3 4 5 6 7 8 9 10 11 12)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LoadBlock(row.text), "0: a.wav, " + std::string(row.expected));
    }
}

TEST_F(TextBlocks, AnEffectHasOneEntryInTheOrderOfItsFirstAppearance)
{
    const Row rows[] = {
        {"in the order of the text", "*FX_GARGLE\n*FX_ECHO", "gargle(20 0), echo(50 50 500 500 0)"},
        {"the second block begins anew", "*FX_ECHO { *FEEDBACK 30 }\n*FX_GARGLE\n*FX_ECHO { *LEFTDELAY 9 }",
            "echo(50 50 9 500 0), gargle(20 0)"},
        {"a second block that fails leaves the first",
            "*FX_ECHO { *FEEDBACK 30 }\n*FX_ECHO { *FEEDBACK x }\n*FX_GARGLE", "echo(50 30 500 500 0)"},
        {"a keyword of another effect is unknown", "*FX_ECHO { *WAVEFORM 1\n*RATEHZ 5\n*FEEDBACK 2 }",
            "echo(50 2 500 500 0)"},
        {"an effect's frequency, delay and gain are its own",
            "*FX_CHORUS {\n*FREQUENCY 1.5\n*DELAY 3\n}\n*FX_PARAMEQ { *GAIN 4 }",
            "chorus(50 10 25 1.5 1 3 3), parameq(7350 12 4)"},
        {"whole numbers only where they belong", "*FX_GARGLE\n*FX_CHORUS { *WAVEFORM 1.0 }\n*FX_ECHO",
            "gargle(20 0)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LoadBlock(row.text), "0: a.wav, " + std::string(row.expected));
    }
}

TEST_F(TextBlocks, AChangedDefaultReverbIsTheDefaultOfWhatIsReadAfterwards)
{
    const FXEnvReverb before = fxEnvReverbDefault;
    fxEnvReverbDefault.room = -7;
    const std::string loaded = LoadBlock("*FX_ENVREVERB { *ROOMHF -8 }");
    fxEnvReverbDefault = before;
    EXPECT_EQ(loaded, "0: a.wav, envreverb/2(-7 -8 0 1.49 0.83 -2602 0.007 200 0.011 100 100 5000)");
}

TEST_F(TextBlocks, ALineHasItsPointsInTheOrderOfTheText)
{
    const Row rows[] = {
        {"two points", "*POLYLINE {\n*POINT 0 0 0\n*POINT 100 0 0.5\n}", "line(0 45: 0 0 0 100 0 0.5)"},
        {"sources and angle", "*POLYLINE {\n*POINT 1 2 3\n*ANGLE -90\n*POINT 4 5 6\n*NUM_ADD_SOUNDS 9\n}",
            "line(9 -90: 1 2 3 4 5 6)"},
        {"a second line takes the place of the first",
            "*POLYLINE {\n*ANGLE 9\n*POINT 0 0 0\n*POINT 1 0 0\n}\n*POLYLINE {\n*POINT 2 0 0\n*POINT 3 0 "
            "0\n}",
            "line(0 9: 2 0 0 3 0 0)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LoadBlock(row.text), "0: a.wav, " + std::string(row.expected));
    }
}

TEST_F(TextBlocks, ALineThatFailsLeavesNoPointsAndEndsTheReading)
{
    const Row rows[] = {
        {"no block", "*POLYLINE\n*GAIN 0.5", "0: a.wav"},
        {"empty", "*POLYLINE {}\n*GAIN 0.5", "0: a.wav"},
        {"one point", "*POLYLINE { *POINT 0 0 0 }\n*GAIN 0.5", "0: a.wav"},
        {"a point of two numbers", "*POLYLINE {\n*POINT 0 0 0\n*POINT 1 1 1\n*POINT 2 2\n}\n*GAIN 0.5",
            "0: a.wav"},
        {"a point over two lines", "*POLYLINE {\n*POINT 0 0 0\n*POINT 1 1\n1\n*POINT 2 2 2\n}", "0: a.wav"},
        {"fewer than no sources", "*POLYLINE {\n*NUM_ADD_SOUNDS -1\n*POINT 0 0 0\n*POINT 1 1 1\n}\n*GAIN 0.5",
            "0: a.wav"},
        {"settings read before stay", "*POLYLINE {\n*NUM_ADD_SOUNDS 3\n*ANGLE 20\n*POINT 1 x\n}",
            "0: a.wav, line(3 20:)"},
        {"a second line that fails", "*POLYLINE {\n*POINT 0 0 0\n*POINT 1 0 0\n}\n*POLYLINE { *POINT 1 }",
            "0: a.wav"},
        {"a second line without a block", "*POLYLINE {\n*POINT 0 0 0\n*POINT 1 0 0\n}\n*POLYLINE",
            "0: a.wav"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LoadBlock(row.text), row.expected);
        EXPECT_EQ(GetDefinition().GetPolyline(), nullptr);
    }
}

} // namespace

} // namespace Quon
