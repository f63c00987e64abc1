#include "harmonet/engine/BlockReader.h"

#include "harmonet/engine/BlockLexer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace Quon
{

namespace
{

using Kind = BlockLexer::Kind;
using Token = BlockLexer::Token;

/// Parses the whole word as a number. A plus sign, which from_chars does not support, is accepted.
template<class Number>
bool ParseNumber(std::string_view word, Number& value)
{
    if (word.size() > 1 && word[0] == '+' && word[1] != '-') {
        word.remove_prefix(1);
    }
    Number read{};
    const char* const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, read);
    if (error != std::errc() || stop != end) {
        return false;
    }
    value = read;
    return true;
}

bool ParseBool(std::string_view word, bool& value)
{
    struct Name
    {
        std::string_view word;
        bool value;
    };
    constexpr Name names[] = {{"true", true}, {"yes", true}, {"on", true}, {"1", true}, {"false", false},
        {"no", false}, {"off", false}, {"0", false}};
    const auto isSameLetter = [](char lower, char any) {
        return lower == (any >= 'A' && any <= 'Z' ? any - 'A' + 'a' : any);
    };
    for (const Name& name : names) {
        if (std::equal(name.word.begin(), name.word.end(), word.begin(), word.end(), isSameLetter)) {
            value = name.value;
            return true;
        }
    }
    return false;
}

} // namespace

/// The state shared by the readers of one tree: the tokens, the current depth, and the last keyword.
class BlockReader::Text : public Allocated
{
public:
    Text(File& file, BlockReaderListener* newListener)
        : lexer(file, newListener)
        , listener(newListener)
    {
    }

    void SetListener(BlockReaderListener* newListener)
    {
        lexer.SetListener(newListener);
        listener = newListener;
    }

    /// Advances to the next keyword of the current block; returns false at the end of the block or the file.
    bool FindKeyword();
    /// Skips the rest of the last keyword.
    void LeaveKeyword(bool isAfterEnd);
    /// Enters the block if one comes next and the maximum depth is not exceeded.
    bool EnterBlock();
    /// Skips the rest of the current block and leaves it.
    void LeaveBlock();

    /// Returns their number.
    int SkipValues();
    void Report(int valueCount, bool hasBlock, bool isAfterEnd) const;
    void ReportUnreadable(const char* wanted, const Token& token) const;

    BlockLexer lexer;
    BlockReaderListener* listener;
    int depth = 0;
    /// Whether there is a last keyword, and the position is still after it.
    bool hasKeyword = false;
    /// Whether a read of the last keyword was attempted.
    bool wasAsked = false;
    PString keyword;
    int keywordLine = 0;
    /// The line of the last keyword returned.
    int givenLine = 0;

private:
    void SkipStray(const Token& token);
    void SkipBlock();
    void NoteEnd();

    bool isEndNoted = false;
};

bool BlockReader::Text::FindKeyword()
{
    while (true) {
        const Token& token = lexer.Peek();
        if (token.kind == Kind::Keyword) {
            keyword = PString(token.text);
            keywordLine = token.line;
            hasKeyword = true;
            wasAsked = false;
            lexer.Take();
            return true;
        }
        if (token.kind == Kind::End) {
            if (depth > 0) {
                NoteEnd();
            }
            return false;
        }
        if (token.kind == Kind::CloseBrace && depth > 0) {
            return false;
        }
        SkipStray(token);
    }
}

/// Skips tokens that do not belong to a keyword.
void BlockReader::Text::SkipStray(const Token& token)
{
    switch (token.kind) {
    case Kind::OpenBrace:
        lexer.Fault(token.line, "a block without a keyword");
        SkipBlock();
        break;
    case Kind::CloseBrace:
        lexer.Fault(token.line, "a closing brace without a block");
        lexer.Take();
        break;
    case Kind::Broken:
        lexer.Take();
        SkipValues();
        break;
    default:
        lexer.Fault(token.line, "text without a keyword");
        lexer.Take();
        SkipValues();
        break;
    }
}

void BlockReader::Text::LeaveKeyword(bool isAfterEnd)
{
    if (!std::exchange(hasKeyword, false)) {
        return;
    }
    const int valueCount = SkipValues();
    const bool hasBlock = lexer.Peek().kind == Kind::OpenBrace;
    if (hasBlock) {
        SkipBlock();
    }
    if (valueCount > 0 || hasBlock || !wasAsked) {
        Report(valueCount, hasBlock, isAfterEnd);
    }
}

bool BlockReader::Text::EnterBlock()
{
    wasAsked = true;
    const int valueCount = SkipValues();
    if (valueCount > 0) {
        Report(valueCount, false, false);
    }
    if (lexer.Peek().kind != Kind::OpenBrace) {
        return false;
    }
    if (depth == maxDepth) {
        lexer.Fault(lexer.Peek().line, "blocks are nested too deep");
        return false;
    }
    lexer.Take();
    hasKeyword = false;
    ++depth;
    return true;
}

void BlockReader::Text::LeaveBlock()
{
    LeaveKeyword(false);
    while (FindKeyword()) {
        LeaveKeyword(true);
    }
    if (lexer.Peek().kind == Kind::CloseBrace) {
        lexer.Take();
    }
    --depth;
}

int BlockReader::Text::SkipValues()
{
    int count = 0;
    while (lexer.Peek().IsValue()) {
        lexer.Take();
        ++count;
    }
    return count;
}

/// Skips the block whose opening brace comes next. Counts instead of recursing, so the depth is unlimited.
void BlockReader::Text::SkipBlock()
{
    long long open = 0;
    do {
        const Kind kind = lexer.Peek().kind;
        if (kind == Kind::End) {
            NoteEnd();
            return;
        }
        open += kind == Kind::OpenBrace ? 1 : kind == Kind::CloseBrace ? -1 : 0;
        lexer.Take();
    } while (open > 0);
}

void BlockReader::Text::NoteEnd()
{
    if (!std::exchange(isEndNoted, true)) {
        lexer.Fault(lexer.Peek().line, "the file ends inside a block");
    }
}

void BlockReader::Text::Report(int valueCount, bool hasBlock, bool isAfterEnd) const
{
    if (listener != nullptr) {
        listener->OnSkipped({keyword, keywordLine, valueCount, hasBlock, wasAsked, isAfterEnd, depth});
    }
}

void BlockReader::Text::ReportUnreadable(const char* wanted, const Token& token) const
{
    if (listener != nullptr) {
        const char* const found = token.kind == Kind::Broken ? "" : token.text.data();
        listener->OnUnreadable(keyword, keywordLine, wanted, token.IsValue() ? found : nullptr);
    }
}

BlockReaderListener::~BlockReaderListener() = default;

BlockReader::BlockReader() = default;

BlockReader::BlockReader(Text& newText, int newDepth)
    : text(&newText)
    , depth(newDepth)
{
}

BlockReader::~BlockReader() = default;

void BlockReader::Init(File& file)
{
    inner.reset();
    ownedText = std::make_unique<Text>(file, listener);
    text = ownedText.get();
}

void BlockReader::SetListener(BlockReaderListener* newListener)
{
    listener = newListener;
    if (text != nullptr) {
        text->SetListener(newListener);
    }
}

bool BlockReader::Next(PString& keyword)
{
    End();
    if (!IsCurrent()) {
        return false;
    }
    text->LeaveKeyword(false);
    if (!text->FindKeyword()) {
        return false;
    }
    keyword = text->keyword;
    text->givenLine = text->keywordLine;
    return true;
}

BlockReader* BlockReader::Begin()
{
    if (!IsCurrent() || !text->hasKeyword || !text->EnterBlock()) {
        return nullptr;
    }
    if (inner == nullptr) {
        inner.reset(new BlockReader(*text, depth + 1));
    }
    return inner.get();
}

void BlockReader::End()
{
    while (text != nullptr && text->depth > depth) {
        text->LeaveBlock();
    }
}

bool BlockReader::ReadString(PString& value)
{
    return ReadValue("a text", [&value](const Token& token) {
        value = PString(token.text);
        return true;
    });
}

bool BlockReader::ReadBool(bool& value)
{
    return ReadValue("true or false",
        [&value](const Token& token) { return token.kind == Kind::Word && ParseBool(token.text, value); });
}

bool BlockReader::ReadInt(int& value)
{
    return ReadValue("a whole number",
        [&value](const Token& token) { return token.kind == Kind::Word && ParseNumber(token.text, value); });
}

bool BlockReader::ReadFloat(float& value)
{
    return ReadValue("a number", [&value](const Token& token) {
        float read = 0.0F;
        if (token.kind != Kind::Word || !ParseNumber(token.text, read) || !std::isfinite(read)) {
            return false;
        }
        value = read;
        return true;
    });
}

int BlockReader::ReadFloatv(float* values, int count)
{
    int taken = 0;
    while (taken < count && ReadFloat(values[taken])) {
        ++taken;
    }
    return taken;
}

int BlockReader::GetLine() const
{
    return text != nullptr ? text->givenLine : 0;
}

/// Whether the position is in this reader's block, and not in an inner or outer one.
bool BlockReader::IsCurrent() const
{
    return text != nullptr && text->depth == depth;
}

template<class Parse>
bool BlockReader::ReadValue(const char* wanted, Parse parse)
{
    if (!IsCurrent() || !text->hasKeyword) {
        return false;
    }
    text->wasAsked = true;
    const Token& token = text->lexer.Peek();
    if (token.IsValue() && token.kind != Kind::Broken && parse(token)) {
        text->lexer.Take();
        return true;
    }
    text->ReportUnreadable(wanted, token);
    return false;
}

} // namespace Quon
