// What a listener hears of a definition that somebody got wrong.

#include "tests/definitions/DefinitionTest.h"

namespace Quon
{

namespace
{

constexpr const char* faultNames[] = {"no definition", "no file", "outside", "unknown", "left over",
    "unreadable", "refused", "out of range", "rate dropped", "no block", "too few points", "lost", "text"};

/// Writes each remark as "line keyword fault", with what the fault has to say behind it.
class Notebook final : public DefinitionListener
{
public:
    Notebook() { before = SoundDefResource::SetListener(this); }
    ~Notebook() override { EXPECT_EQ(SoundDefResource::SetListener(before), this); }

    void OnRemark(const DefinitionRemark& remark) override
    {
        std::string text = std::to_string(remark.line);
        if (!remark.keyword.IsEmpty())
            text += ' ' + std::string(remark.keyword.GetView());
        text += std::string(" ") + faultNames[static_cast<int>(remark.fault)];
        if (remark.fault == DefinitionFault::Unreadable)
            text += std::string(": ") + remark.text + " for " + (remark.found ? remark.found : "nothing");
        if (remark.fault == DefinitionFault::Refused || remark.fault == DefinitionFault::OutOfRange)
            text += ": " + ToText(static_cast<float>(remark.value)) + " of " +
                ToText(static_cast<float>(remark.least)) + " to " + ToText(static_cast<float>(remark.most));
        remarks.push_back(text);
    }

    Lines remarks;

private:
    DefinitionListener* before;
};

struct FaultRow
{
    std::string text;
    Lines expected;
};

class TextFaults : public DefinitionTest
{
protected:
    void Check(const std::vector<FaultRow>& rows, const std::string& front, const std::string& back)
    {
        for (const FaultRow& row : rows) {
            SCOPED_TRACE(row.text);
            Notebook notebook;
            Load(front + row.text + back);
            EXPECT_EQ(notebook.remarks, row.expected);
        }
    }
};

TEST_F(TextFaults, EveryFaultIsHeardWithItsLineAndKeyword)
{
    // The first keyword of each row stands in line 3.
    Check(
        {
            {"*GAIN 1\n*FX_ECHO { *FEEDBACK 30 }\n*FX_GARGLE", {}},
            {"*EFFECT { *GAIN 1 }\n*WOW 1", {"3 *EFFECT unknown", "4 *WOW unknown"}},
            {"*FX_ECHO\n{\n*WAVEFORM 1\n}", {"5 *WAVEFORM unknown"}},
            {"*GAIN 0.5 0.6", {"3 *GAIN left over"}},
            {"*GAIN 0.5 { *DELAY 1 }", {"3 *GAIN left over"}},
            {"*GAIN loud\n*LOOPING true\n*FX_ECHO { *DELAY 1 }",
                {"3 *GAIN unreadable: a number for loud", "4 *LOOPING lost", "5 *FX_ECHO lost"}},
            {"*DELAY\n*GAIN 1", {"3 *DELAY unreadable: a whole number for nothing", "4 *GAIN lost"}},
            {"*FX_ECHO {\n*FEEDBACK x\n*LEFTDELAY 1\n}\n*GAIN 1",
                {"4 *FEEDBACK unreadable: a number for x", "5 *LEFTDELAY lost", "7 *GAIN lost"}},
            {"*DELAY -1\n*GAIN 1", {"3 *DELAY refused: -1 of 0 to 2147483648", "4 *GAIN lost"}},
            {"*FREQUENCY 99\n*GAIN 1", {"3 *FREQUENCY out of range: 99 of 100 to 1e+05"}},
            {"*FX_GARGLE\n*SET_FRQUENCY true\n*FREQUENCY 9000",
                {"4 *SET_FRQUENCY rate dropped", "5 *FREQUENCY rate dropped"}},
            {"*FREQUENCY 9000\n*FX_ECHO {\n*FEEDBACK 1\n}", {"4 *FX_ECHO rate dropped"}},
            {"*GAIN 1.5", {"3 *GAIN out of range: 1.5 of 0 to 1"}},
            {"*FX_ECHO {\n*PANDELAY 2\n}", {"4 *PANDELAY out of range: 2 of 0 to 1"}},
            {"*POLYLINE\n*GAIN 1", {"3 *POLYLINE no block", "4 *GAIN lost"}},
            {"*POLYLINE {\n*POINT 1 2 3\n}\n*GAIN 1", {"3 *POLYLINE too few points", "6 *GAIN lost"}},
            {"*POLYLINE {\n*NUM_ADD_SOUNDS -1\n*POINT 1 2 3\n}",
                {"4 *NUM_ADD_SOUNDS refused: -1 of 0 to 2147483648", "5 *POINT lost"}},
            {"*POLYLINE {\n*POINT 1 2\n}", {"4 *POINT unreadable: a number for nothing"}},
            {"}\n*GAIN 1", {"4 *GAIN outside", "5 text"}},
        },
        "*SOUND_DEFINITION {\n*FILE a.wav\n", "\n}\n");
}

TEST_F(TextFaults, AFileWithoutADefinitionIsHeardAsAWhole)
{
    Check(
        {
            {"*A 1\n*FILE x", {"1 *A outside", "2 *FILE outside", "0 no definition"}},
            {"*SOUND_DEFINITION\n*FILE x", {"0 no definition", "2 *FILE outside"}},
            {"*SOUND_DEFINITION {\n*GAIN 1\n}", {"0 no file"}},
            {"*SOUND_DEFINITION {\n*FILE x\n", {"3 text"}},
            {"*A\n*SOUND_DEFINITION { *FILE x }\n*SOUND_DEFINITION { *FILE y }",
                {"1 *A outside", "3 *SOUND_DEFINITION outside"}},
        },
        "", "");
}

} // namespace

} // namespace Quon
