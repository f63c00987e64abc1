// Definitions as text: the settings they give, and the remarks that a listener receives.

#include "tests/definitions/DefinitionTest.h"

#include "harmonet/definitions/EnvReverbPresets.h"

namespace Quon
{

namespace
{

constexpr const char* faultNames[] = {"no definition", "no file", "outside", "unknown", "left over",
    "unreadable", "refused", "out of range", "rate dropped", "no block", "too few points", "lost", "text"};

/// Writes each remark as "line keyword fault", followed by the details of the fault.
class Notebook final : public DefinitionListener
{
public:
    Notebook() { before = SoundDefResource::SetListener(this); }
    ~Notebook() override { EXPECT_EQ(SoundDefResource::SetListener(before), this); }

    void OnRemark(const DefinitionRemark& remark) override
    {
        std::string text = std::to_string(remark.line);
        if (!remark.keyword.IsEmpty()) {
            text += ' ' + std::string(remark.keyword.GetView());
        }
        text += std::string(" ") + faultNames[static_cast<int>(remark.fault)];
        if (remark.fault == DefinitionFault::Unreadable) {
            text += std::string(": ") + remark.text + " for " + (remark.found ? remark.found : "nothing");
        }
        if (remark.fault == DefinitionFault::Refused || remark.fault == DefinitionFault::OutOfRange) {
            text += ": " + ToText(static_cast<float>(remark.value)) + " of " +
                ToText(static_cast<float>(remark.minimum)) + " to " +
                ToText(static_cast<float>(remark.maximum));
        }
        remarks.push_back(text);
    }

    Lines remarks;

private:
    DefinitionListener* before;
};

struct Row
{
    std::string text;
    std::string settings;
    Lines remarks = {};
};

class TextSettings : public DefinitionTest
{
protected:
    /// Loads each as the rest of a definition after "a.wav", from line 3 on, and expects success, the
    /// settings after the file's name, and the remarks.
    void CheckBlocks(const std::vector<Row>& rows)
    {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.text);
            Notebook notebook;
            EXPECT_EQ(LoadBlock(row.text), (row.settings.empty() ? "0: a.wav" : "0: a.wav, ") + row.settings);
            EXPECT_EQ(notebook.remarks, row.remarks);
        }
    }
};

TEST_F(TextSettings, EachKeywordReachesItsSetting)
{
    CheckBlocks({
        {"", ""},
        {"*LOOPING true\n*LOOP_START 441\n*LOOP_END 882", "looping 1, loop start 441, loop end 882"},
        {"*GAIN 1\n*GAIN 0.25", "gain 0.25"},
        {"*LOW_PASS 0.5\n*DOPPLER 2", "lowpass 0.5, doppler 2"},
        {"*DELAY 250", "delay 250"},
        {"*MIN_DISTANCE 5\n*MAX_DISTANCE 120.5", "min 5, max 120.5"},
        {"*CUTOUT false", "cutout 0"},
        {"*INNER_CONE_ANGLE 60\n*OUTER_CONE_ANGLE 120\n*CONE_GAIN 0.5", "inner 60, outer 120, conegain 0.5"},
        {"*POSITION 1 -2.5 3e1", "at 1 -2.5 30"},
        {"*SET_FRQUENCY true", "changing 1"},
        {"*DISABLE_ENV_FX true", "dry 1"},
        // Nothing is clamped.
        {"*LOOP_START -1", "loop start -1", {"3 *LOOP_START out of range: -1 of 0 to 2147483648"}},
        {"*GAIN 7\n*MIN_DISTANCE -1\n*CONE_GAIN -3", "gain 7, min -1, conegain -3",
            {"3 *GAIN out of range: 7 of 0 to 1", "4 *MIN_DISTANCE out of range: -1 of 0 to 3.4028235e+38",
                "5 *CONE_GAIN out of range: -3 of 0 to 1"}},
        // Unknown keywords are ignored, and so are extra values after known ones.
        {"*SET_FREQUENCY true\n*COLOUR red { *GAIN 0.1 }\n*GAIN 0.5", "gain 0.5",
            {"3 *SET_FREQUENCY unknown", "4 *COLOUR unknown"}},
        {"*LOOPING true { *GAIN 0.1 }\n*DELAY 1 2", "looping 1, delay 1",
            {"3 *LOOPING left over", "4 *DELAY left over"}},
        {"*POINT 1 2 3\n*WETDRYMIX 1", "", {"3 *POINT unknown", "4 *WETDRYMIX unknown"}},
    });
}

TEST_F(TextSettings, AFrequencyFrom100To100000AllowsRateChangesUnlessThereAreEffects)
{
    CheckBlocks({
        {"*FREQUENCY 99\n*GAIN 0.5", "gain 0.5", {"3 *FREQUENCY out of range: 99 of 100 to 1e+05"}},
        {"*FREQUENCY 0\n*GAIN 0.5", "gain 0.5"},
        {"*FREQUENCY 100", "changing 1, hz 100"},
        {"*FREQUENCY 100000", "changing 1, hz 1e+05"},
        {"*FREQUENCY 22050\n*FREQUENCY 200000", "changing 1",
            {"4 *FREQUENCY out of range: 2e+05 of 100 to 1e+05"}},
        {"*FREQUENCY 22050\n*SET_FRQUENCY false", "hz 22050"},
        {"*FREQUENCY 22050\n*FREQUENCY high\n*GAIN 0.5", "changing 1",
            {"4 *FREQUENCY unreadable: a whole number for high", "5 *GAIN lost"}},
        {"*FREQUENCY 22050\n*FX_ECHO {\n*FEEDBACK 1\n}", "echo(50 1 500 500 0)", {"4 *FX_ECHO rate dropped"}},
        {"*FX_GARGLE\n*SET_FRQUENCY true\n*FREQUENCY 22050", "gargle(20 0)",
            {"4 *SET_FRQUENCY rate dropped", "5 *FREQUENCY rate dropped"}},
        {"*FREQUENCY 22050\n*SET_FRQUENCY false\n*FX_GARGLE", "hz 22050, gargle(20 0)"},
    });
}

TEST_F(TextSettings, ABadValueEndsTheReadAndKeepsEarlierSettings)
{
    CheckBlocks({
        {"*DELAY 9\n*GAIN loud\n*LOOPING true\n*FX_ECHO { *DELAY 1 }", "delay 9",
            {"4 *GAIN unreadable: a number for loud", "5 *LOOPING lost", "6 *FX_ECHO lost"}},
        {"*GAIN\n0.5\n*LOOPING true", "",
            {"3 *GAIN unreadable: a number for nothing", "4 text", "5 *LOOPING lost"}},
        {"*DELAY 1.5", "", {"3 *DELAY unreadable: a whole number for 1.5"}},
        {"*LOOPING maybe", "", {"3 *LOOPING unreadable: true or false for maybe"}},
        {"*DELAY 9\n*DELAY -1\n*GAIN 0.5", "", {"4 *DELAY refused: -1 of 0 to 2147483648", "5 *GAIN lost"}},
        {"*POSITION 7 8 9\n*POSITION 1 2 x\n*GAIN 0.5", "at 1 2 9",
            {"4 *POSITION unreadable: a number for x", "5 *GAIN lost"}},
        {"*FX_ECHO {\n*FEEDBACK x\n*LEFTDELAY 1\n}\n*GAIN 1", "",
            {"4 *FEEDBACK unreadable: a number for x", "5 *LEFTDELAY lost", "7 *GAIN lost"}},
        {"}\n*GAIN 1", "", {"4 *GAIN outside", "5 text"}},
    });
}

TEST_F(TextSettings, AnEffectHasOneEntryInOrderOfFirstAppearance)
{
    CheckBlocks({
        {"*FX_GARGLE\n*FX_ECHO", "gargle(20 0), echo(50 50 500 500 0)"},
        // The second block begins anew; one that fails leaves the first.
        {"*FX_ECHO { *FEEDBACK 30 }\n*FX_GARGLE\n*FX_ECHO { *LEFTDELAY 9 }",
            "echo(50 50 9 500 0), gargle(20 0)"},
        {"*FX_ECHO { *FEEDBACK 30 }\n*FX_ECHO { *FEEDBACK x }\n*FX_GARGLE", "echo(50 30 500 500 0)",
            {"4 *FEEDBACK unreadable: a number for x", "5 *FX_GARGLE lost"}},
        {"*FX_ECHO\n{\n*WAVEFORM 1\n*PANDELAY 2\n}", "echo(50 50 500 500 2)",
            {"5 *WAVEFORM unknown", "6 *PANDELAY out of range: 2 of 0 to 1"}},
        {"*FX_CHORUS {\n*FREQUENCY 1.5\n*DELAY 3\n}\n*FX_PARAMEQ { *GAIN 4 }",
            "chorus(50 10 25 1.5 1 3 3), parameq(7350 12 4)"},
        {"*FX_GARGLE\n*FX_CHORUS { *WAVEFORM 1.0 }", "gargle(20 0)",
            {"4 *WAVEFORM unreadable: a whole number for 1.0"}},
    });
    const FXEnvReverb before = fxEnvReverbDefault;
    fxEnvReverbDefault.room = -7;
    CheckBlocks({{"*FX_ENVREVERB { *ROOMHF -8 }",
        "envreverb/2(-7 -8 0 1.49 0.83 -2602 0.007 200 0.011 100 100 5000)"}});
    fxEnvReverbDefault = before;
}

TEST_F(TextSettings, VariationsAndLimitsAreReadAndValuesOutOfRangeIgnored)
{
    CheckBlocks({
        {"*VARIANT b.wav\n*VARIANT_ORDER sequence\n*VARIANT \"c d.wav\"", "then b.wav c d.wav"},
        {"*GAIN_RANGE 3 -2.5\n*FREQUENCY_RANGE 0.1 10", "dB -2.5 to 3, rate 0.1 to 10"},
        {"*MAX_INSTANCES 4\n*STEALING none\n*MIN_INTERVAL 50", "instances 4 none, interval 50"},
        {"*GAIN_RANGE -1 61\n*GAIN 0.5", "gain 0.5", {"3 *GAIN_RANGE out of range: 61 of -60 to 60"}},
        {"*FREQUENCY_RANGE 0 2", "", {"3 *FREQUENCY_RANGE out of range: 0 of 0.1 to 10"}},
        {"*MAX_INSTANCES -1\n*MIN_INTERVAL -5\n*GAIN 0.5", "gain 0.5",
            {"3 *MAX_INSTANCES out of range: -1 of 0 to 2147483648",
                "4 *MIN_INTERVAL out of range: -5 of 0 to 2147483648"}},
        {"*GAIN_RANGE 1\n*GAIN 0.5", "", {"3 *GAIN_RANGE unreadable: a number for nothing", "4 *GAIN lost"}},
        {"*STEALING newest\n*GAIN 0.5", "",
            {"3 *STEALING unreadable: oldest, quietest or none for newest", "4 *GAIN lost"}},
        {"*VARIANT_ORDER", "", {"3 *VARIANT_ORDER unreadable: a text for nothing"}},
        // Effects exclude a change of the rate, in either order.
        {"*FREQUENCY_RANGE 1 2\n*FX_GARGLE", "gargle(20 0)", {"4 *FX_GARGLE rate dropped"}},
        {"*FX_GARGLE\n*FREQUENCY_RANGE 1 2", "gargle(20 0)", {"4 *FREQUENCY_RANGE rate dropped"}},
    });
}

TEST_F(TextSettings, ALineHasItsPointsInOrderAndNoneAfterAnError)
{
    const std::string good = "*POLYLINE {\n*POINT 0 0 0\n*POINT 1 0 0\n}\n";
    CheckBlocks({
        {"*POLYLINE {\n*POINT 1 2 3\n*ANGLE -90\n*POINT 4 5 6.5\n*NUM_ADD_SOUNDS 9\n}",
            "line(9 -90: 1 2 3 4 5 6.5)"},
        {good + "*POLYLINE {\n*ANGLE 9\n*POINT 2 0 0\n*POINT 3 0 0\n}", "line(0 9: 2 0 0 3 0 0)"},
        {good + "*POLYLINE\n*GAIN 0.5", "", {"7 *POLYLINE no block", "8 *GAIN lost"}},
        {"*POLYLINE {}", "", {"3 *POLYLINE too few points"}},
        {"*POLYLINE {\n*POINT 0 0 0\n}\n*GAIN 0.5", "", {"3 *POLYLINE too few points", "6 *GAIN lost"}},
        {"*POLYLINE {\n*POINT 0 0 0\n*POINT 1 1\n1\n*POINT 2 2 2\n}", "",
            {"5 *POINT unreadable: a number for nothing", "6 text", "7 *POINT lost"}},
        {"*POLYLINE {\n*NUM_ADD_SOUNDS -1\n*POINT 0 0 0\n}", "",
            {"4 *NUM_ADD_SOUNDS refused: -1 of 0 to 2147483648", "5 *POINT lost"}},
        {good + "*POLYLINE {\n*NUM_ADD_SOUNDS 3\n*ANGLE 20\n*POINT 1 x\n}", "line(3 20:)",
            {"10 *POINT unreadable: a number for x"}},
    });
}

TEST_F(TextSettings, ADefinitionLoadsIfItNamesAFile)
{
    const Row rows[] = {
        {"*A 1\n*FILE x { *FILE a.wav }", "1: ", {"1 *A outside", "2 *FILE outside", "0 no definition"}},
        {"*SOUND_DEFINITION\n*FILE a.wav", "1: ", {"0 no definition", "2 *FILE outside"}},
        {"*SOUND_DEFINITION { *GAIN 0.5 }", "1: gain 0.5", {"0 no file"}},
        {"*SOUND_DEFINITION { *GAIN x\n*FILE a.wav }",
            "1: ", {"1 *GAIN unreadable: a number for x", "2 *FILE lost", "0 no file"}},
        {"*OTHER { *FILE b.wav }\n*SOUND_DEFINITION { *FILE c.wav }\n*GAIN 0.5", "0: c.wav",
            {"1 *OTHER outside", "3 *GAIN outside"}},
        {"*SOUND_DEFINITION { *FILE a.wav }\n*SOUND_DEFINITION { *FILE b.wav }", "0: a.wav",
            {"2 *SOUND_DEFINITION outside"}},
        {"*SOUND_DEFINITION {\n*FILE a.wav\n*FILE \"b c.wav\"\n}", "0: b c.wav"},
        {"*SOUND_DEFINITION {\n*FILE a.wav\n*FILE\n*GAIN 0.5\n}", "1: a.wav",
            {"3 *FILE unreadable: a text for nothing", "4 *GAIN lost", "0 no file"}},
        {"*SOUND_DEFINITION {\n*FILE a.wav\n*GAIN 0.5", "0: a.wav, gain 0.5", {"3 text"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        Forget();
        Notebook notebook;
        EXPECT_EQ(Load(row.text), row.settings);
        EXPECT_EQ(notebook.remarks, row.remarks);
    }
}

TEST_F(TextSettings, ALoadResetsAllSettingsExceptTheFileName)
{
    LoadBlock("*GAIN 0.5\n*LOOPING true\n*FX_GARGLE\n*POLYLINE { *ANGLE 1\n*POINT 0 0 0\n*POINT 1 0 0 }");
    EXPECT_EQ(Load("*SOUND_DEFINITION { *DELAY 5 }"), "1: a.wav, delay 5");
    EXPECT_EQ(Load(""), "1: a.wav");
}

TEST_F(TextSettings, AFileThatCannotBeOpenedClearsOnlyEffectsAndPoints)
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
