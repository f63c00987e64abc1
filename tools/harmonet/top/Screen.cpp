#include "tools/harmonet/top/Screen.h"

#include "tools/harmonet/Console.h"
#include "tools/harmonet/Output.h"
#include "tools/harmonet/PlayReport.h"
#include "tools/harmonet/SoundData.h"
#include "tools/harmonet/top/TopTable.h"
#include "tools/trace/Wording.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>

#define NCURSES_NOMACROS
#include <curses.h>

namespace Tool
{

namespace
{

using Column = TopTable::Column;
using Show = TopTable::Show;
using Quon::SoundPhase;

constexpr const char* help =
    "q quit   sort: s p d g a n   show: * all h heard v virtual w waiting   / search";

struct ColumnLook
{
    const char* title; ///< Its first letter is the key that sorts by it.
    Column column;
    int width; ///< 0 for the names, which get the remaining width.
};

constexpr ColumnLook columns[] = {{"State", Column::State, 7}, {"Prio", Column::Priority, 5},
    {"Dist", Column::Distance, 6}, {"Gain", Column::Gain, 5}, {"Age", Column::Age, 6},
    {"Name", Column::Name, 0}};

constexpr std::pair<int, Show> filters[] = {
    {'*', Show::All}, {'h', Show::Heard}, {'v', Show::Virtual}, {'w', Show::Waiting}};

constexpr int headLines = 3;
constexpr int footLines = 1;
constexpr int escape = 27;
constexpr int deleteKey = 127;
constexpr int redrawKey = 'L' - '@'; ///< Ctrl-L.

// Colour pairs.
constexpr short heardPair = 1;
constexpr short virtualPair = 2;
constexpr short waitingPair = 3;

bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// Returns the first characters of UTF-8 text.
std::string Cut(const std::string& text, int count)
{
    std::size_t at = 0;
    while (at < text.size() && (count > 0 || IsContinuation(text[at]))) {
        ++at;
        count -= at < text.size() && IsContinuation(text[at]) ? 0 : 1;
    }
    return text.substr(0, at);
}

std::string Fixed(float number, int digits)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", digits, static_cast<double>(number));
    return text.data();
}

std::string AlignRight(const std::string& text, int width)
{
    const auto wanted = static_cast<std::size_t>(width);
    return text.size() < wanted ? std::string(wanted - text.size(), ' ') + text : text;
}

std::string TextOf(const TopTable::Row& row, Column column)
{
    const Quon::SoundState& state = row.state;
    switch (column) {
    case Column::State:
        return Trace::NameOfPhase(state);
    case Column::Priority:
        return std::to_string(state.priority);
    case Column::Distance:
        return Fixed(state.distance, 1);
    case Column::Gain:
        return Fixed(state.gain, 2);
    case Column::Age:
        return DescribeTime(state.ageMs);
    case Column::Name:
        break;
    }
    return row.name;
}

short PairOf(SoundPhase phase)
{
    return phase == SoundPhase::Heard ? heardPair : phase == SoundPhase::Virtual ? virtualPair : waitingPair;
}

bool IsNumber(Column column)
{
    return column != Column::State && column != Column::Name;
}

// Names get the width that the reasons leave. Most reasons are shorter than this.
int NameWidth()
{
    constexpr int minWidth = 12;
    constexpr int reasonWidth = 48;
    int others = reasonWidth;
    for (const ColumnLook& look : columns) {
        others += look.width + 1;
    }
    return std::max(COLS - others, minWidth);
}

// Overwrites the line from `x` on.
void Write(int y, int x, const std::string& text)
{
    if (x < COLS && move(y, x) != ERR) {
        clrtoeol();
        addstr(Cut(text, COLS - x).c_str());
    }
}

void StartColours()
{
    if (!has_colors() || std::getenv("NO_COLOR")) {
        return;
    }
    start_color();
    use_default_colors();
    init_pair(heardPair, COLOR_GREEN, -1);
    init_pair(virtualPair, COLOR_YELLOW, -1);
    init_pair(waitingPair, COLOR_CYAN, -1);
}

} // namespace

void CheckScreen()
{
    if (!IsTerminal() || !IsInputTerminal()) {
        throw ToolError("--top needs a terminal as standard input and output", ExitCode::BadArguments);
    }
}

class Screen::Terminal
{
public:
    Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal();

    bool HandleKeys();
    bool IsDue();
    void Draw(unsigned long playedMs, unsigned int maxAudible, const PlayReport& report);

private:
    using Clock = std::chrono::steady_clock;

    void HandleKey(int key);
    void Scroll(int key);
    void Type(int key);
    void DrawHead(unsigned long playedMs, unsigned int maxAudible);
    void DrawRow(int y, const TopTable::Row& row);
    static int GetPageSize() { return std::max(LINES - headLines - footLines, 1); }

    SCREEN* screen;
    TopTable table;
    int first = 0; ///< The row at the top of the screen.
    bool isTyping = false;
    bool hasQuit = false;
    Clock::time_point next; ///< The time of the next redraw.
};

Screen::Terminal::Terminal()
{
    CheckScreen();
    FlushOutput();
    std::setlocale(LC_CTYPE, "");
    screen = newterm(nullptr, stdout, stdin);
    if (!screen) {
        const char* const name = std::getenv("TERM");
        throw ToolError(
            "--top does not support this terminal: TERM is '" + std::string(name ? name : "") + "'",
            ExitCode::BadArguments);
    }
    constexpr int escapeMs = 25;
    set_escdelay(escapeMs);
    cbreak();
    noecho();
    nodelay(stdscr, true);
    keypad(stdscr, true);
    curs_set(0);
    StartColours();
}

Screen::Terminal::~Terminal()
{
    endwin();
    delscreen(screen);
}

bool Screen::Terminal::HandleKeys()
{
    for (int key = getch(); key != ERR; key = getch()) {
        isTyping ? Type(key) : HandleKey(key);
        next = {};
    }
    return !hasQuit;
}

void Screen::Terminal::HandleKey(int key)
{
    for (const ColumnLook& look : columns) {
        if (key == std::tolower(static_cast<unsigned char>(look.title[0]))) {
            return table.SortBy(look.column);
        }
    }
    for (const auto& [filterKey, show] : filters) {
        if (key == filterKey) {
            return table.SetShow(show);
        }
    }
    if (key == 'q') {
        hasQuit = true;
    }
    else if (key == '/') {
        table.SetSearch("");
        isTyping = true;
    }
    else if (key == redrawKey) {
        clearok(curscr, true);
    }
    else {
        Scroll(key);
    }
}

// Draw() clamps `first` to the number of rows.
void Screen::Terminal::Scroll(int key)
{
    const int last = static_cast<int>(table.GetRows().size());
    const std::pair<int, int> targets[] = {{KEY_UP, first - 1}, {KEY_DOWN, first + 1},
        {KEY_PPAGE, first - GetPageSize()}, {KEY_NPAGE, first + GetPageSize()}, {KEY_HOME, 0},
        {KEY_END, last}};
    for (const auto& [targetKey, target] : targets) {
        if (key == targetKey) {
            first = target;
        }
    }
}

void Screen::Terminal::Type(int key)
{
    constexpr int lastByte = 255;
    std::string text = table.GetSearch();
    if (key == '\n' || key == '\r' || key == KEY_ENTER) {
        isTyping = false;
    }
    else if (key == escape) {
        isTyping = false;
        text.clear();
    }
    else if (key == KEY_BACKSPACE || key == '\b' || key == deleteKey) {
        while (!text.empty() && IsContinuation(text.back())) {
            text.pop_back();
        }
        if (!text.empty()) {
            text.pop_back();
        }
    }
    else if (key >= ' ' && key <= lastByte) {
        text += static_cast<char>(key);
    }
    table.SetSearch(text);
}

bool Screen::Terminal::IsDue()
{
    constexpr std::chrono::milliseconds period(100);
    const Clock::time_point now = Clock::now();
    if (now < next) {
        return false;
    }
    next = now + period;
    return true;
}

void Screen::Terminal::Draw(unsigned long playedMs, unsigned int maxAudible, const PlayReport& report)
{
    table.Update(report);
    std::span<const TopTable::Row> rows = table.GetRows();
    first = std::clamp(first, 0, std::max(static_cast<int>(rows.size()) - GetPageSize(), 0));
    rows = rows.subspan(static_cast<std::size_t>(first));
    rows = rows.first(std::min(rows.size(), static_cast<std::size_t>(GetPageSize())));
    erase();
    DrawHead(playedMs, maxAudible);
    int y = headLines;
    for (const TopTable::Row& row : rows) {
        DrawRow(y++, row);
    }
    Write(LINES - 1, 0, isTyping ? "search: " + table.GetSearch() : report.GetLastEvent());
    refresh();
}

void Screen::Terminal::DrawHead(unsigned long playedMs, unsigned int maxAudible)
{
    const TopTable::Counts& counts = table.GetCounts();
    Write(0, 0,
        DescribeTime(playedMs) + "   heard " + std::to_string(counts.heard) + " of at most " +
            std::to_string(maxAudible) + "   virtual " + std::to_string(counts.isVirtual) + "   waiting " +
            std::to_string(counts.waiting) +
            (table.GetSearch().empty() ? "" : "   only '" + table.GetSearch() + "'"));
    Write(1, 0, help);
    attron(A_REVERSE);
    mvhline(2, 0, ' ', COLS);
    int x = 0;
    for (const ColumnLook& look : columns) {
        const bool isSorted = look.column == table.GetColumn();
        const std::string title = std::string(look.title) + (!isSorted ? "" : table.IsReverse() ? "-" : "+");
        const std::string shown = IsNumber(look.column) ? AlignRight(title, look.width) : title;
        mvaddstr(2, x, Cut(shown, COLS - x).c_str());
        x += (look.width > 0 ? look.width : NameWidth()) + 1;
    }
    mvaddstr(2, x, Cut("Why", COLS - x).c_str());
    attroff(A_REVERSE);
}

// Draws from left to right, so that the reason overwrites the end of a long name.
void Screen::Terminal::DrawRow(int y, const TopTable::Row& row)
{
    const attr_t colour = static_cast<attr_t>(COLOR_PAIR(PairOf(row.state.phase)));
    int x = 0;
    for (const ColumnLook& look : columns) {
        const std::string text = TextOf(row, look.column);
        attron(look.column == Column::State ? colour : A_NORMAL);
        Write(y, x, IsNumber(look.column) ? AlignRight(text, look.width) : text);
        attroff(colour);
        x += (look.width > 0 ? look.width : NameWidth()) + 1;
    }
    Write(y, x - 1, std::string(" ") + Quon::DescribeReason(row.state.reason));
}

Screen::Screen()
    : terminal(std::make_unique<Terminal>())
{
}

Screen::~Screen() = default;

bool Screen::Update(unsigned long playedMs, unsigned int maxAudible, const PlayReport& report)
{
    if (!terminal->HandleKeys()) {
        return false;
    }
    if (terminal->IsDue()) {
        terminal->Draw(playedMs, maxAudible, report);
    }
    return true;
}

} // namespace Tool
