// Compares the documentation of definitions with the library.

#include "harmonet/definitions/EffectKeywords.h"
#include "tests/definitions/DefinitionTest.h"

#include <fstream>
#include <sstream>

namespace Quon
{

namespace
{

class TextDocs : public DefinitionTest
{
protected:
    TextDocs()
    {
        std::ifstream file(HARMONET_DEFINITIONS_PAPER);
        EXPECT_TRUE(file);
        for (std::string line; std::getline(file, line);) {
            paper.push_back(line);
        }
    }

    /// The lines after the first one that begins like that, up to the next heading.
    Lines GetSection(const std::string& heading) const
    {
        Lines section;
        bool isThere = false;
        for (const std::string& line : paper) {
            if (line.starts_with("##")) {
                isThere = line.starts_with(heading);
            }
            else if (isThere) {
                section.push_back(line);
            }
        }
        return section;
    }

    /// The first block of text between fences in a section.
    std::string GetExample(const std::string& heading) const
    {
        std::string example;
        int fences = 0;
        for (const std::string& line : GetSection(heading)) {
            if (line.starts_with("```")) {
                ++fences;
            }
            else if (fences == 1) {
                example += line + '\n';
            }
        }
        return example;
    }

    /// The cells of the rows of the tables in a section.
    std::vector<Lines> GetRows(const std::string& heading) const
    {
        std::vector<Lines> rows;
        for (const std::string& line : GetSection(heading)) {
            if (!line.starts_with("| `")) {
                continue;
            }
            Lines& cells = rows.emplace_back();
            std::istringstream row(line);
            for (std::string cell; std::getline(row, cell, '|');) {
                cells.push_back(Trim(cell));
            }
            cells.erase(cells.begin());
        }
        return rows;
    }

    static std::string Trim(const std::string& text)
    {
        const std::size_t first = text.find_first_not_of(" `");
        const std::size_t last = text.find_last_not_of(" `");
        return first == std::string::npos ? "" : text.substr(first, last - first + 1);
    }

    Lines paper;
};

TEST_F(TextDocs, ExamplesLoadAsDocumented)
{
    EXPECT_EQ(Load(GetExample("## Example")),
        "0: engine_loop.wav, looping 1, gain 0.8, delay 250, min 5, max 120, cutout 0, inner 60, outer 120, "
        "conegain 0.25, echo(30 40 250 310 0)");
    Forget();
    EXPECT_EQ(LoadBlock(GetExample("### Sounds along a line")),
        "0: a.wav, line(3 60: -110 0 -20 -92 0 -6 -75 0 12)");
    EXPECT_EQ(LoadBlock(GetExample("### Variation and limits")),
        "0: a.wav, or step2.wav step3.wav, dB -4 to 0, rate 0.92 to 1.08, instances 3 quietest, interval "
        "120");
}

// Each row of a setting: the default, written into a definition, changes nothing.
TEST_F(TextDocs, DefaultSettingsMatchTheLibrary)
{
    int count = 0;
    for (const char* heading : {"## The sound", "### Positional sounds", "### Variation and limits"}) {
        for (const Lines& row : GetRows(heading)) {
            if (row[0] == "*FILE" || row[0] == "*VARIANT") {
                continue;
            }
            SCOPED_TRACE(row[0]);
            EXPECT_EQ(LoadBlock(row[0] + ' ' + row[3] + "\n*GAIN 0.5"), "0: a.wav, gain 0.5");
            ++count;
        }
    }
    EXPECT_EQ(count, 23);
}

TEST_F(TextDocs, EveryEffectIsDocumentedWithRangesAndDefaults)
{
    for (unsigned int effect = 0; effect < numResourceFX; ++effect) {
        const EffectKeywords& keywords = GetEffectKeywords(static_cast<SndFX>(effect));
        const std::string name(keywords.keyword.GetView());
        SCOPED_TRACE(name);
        const std::vector<Lines> rows = GetRows("### `" + name + '`');
        ASSERT_EQ(rows.size(), keywords.fields.size());
        std::string defaults = name + " {\n";
        std::string numbered = defaults;
        std::string numbers;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const EffectField& field = keywords.fields[i];
            SCOPED_TRACE(rows[i][0]);
            EXPECT_EQ(rows[i][0], field.keyword.GetView());
            EXPECT_EQ(rows[i][1], field.isInt ? "whole number" : "number");
            std::ostringstream range;
            range << field.minimum << " to " << field.maximum;
            EXPECT_TRUE((", " + rows[i][2]).ends_with(", " + range.str())) << rows[i][2];
            defaults += rows[i][0] + ' ' + rows[i][3] + '\n';
            const std::string number = ' ' + std::to_string(i + 1);
            numbered += rows[i][0] + number + '\n';
            numbers += number;
        }
        const std::string written = LoadBlock(defaults + '}');
        EXPECT_EQ(written, LoadBlock(name));
        // The page lists the fields of a record in their order.
        const std::string filled = LoadBlock(numbered + '}');
        EXPECT_TRUE(filled.ends_with('(' + numbers.substr(1) + ')')) << filled;
    }
}

} // namespace

} // namespace Quon
