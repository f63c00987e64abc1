#include "harmonet/engine/BlockLexer.h"

#include "harmonet/engine/BlockReader.h"

#include <algorithm>

namespace Quon
{

namespace
{

bool IsLineEnd(int character)
{
    return character == '\n' || character == '\r';
}

/// Blanks and all control characters, including the zero, which would truncate a text.
bool IsBlank(int character)
{
    return (character >= 0 && character <= ' ' && !IsLineEnd(character)) || character == 0x7F;
}

} // namespace

BlockLexer::BlockLexer(File& newFile, BlockReaderListener* newListener)
    : file(newFile)
    , listener(newListener)
{
    static_assert(std::tuple_size_v<decltype(text)> == BlockReader::maxTokenLength + 1);
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    Refill();
    if (std::string_view(buffer.data(), filled).starts_with(byteOrderMark)) {
        position = byteOrderMark.size();
    }
}

const BlockLexer::Token& BlockLexer::Peek()
{
    if (isPeeked) {
        return token;
    }
    isPeeked = true;
    SkipToToken();
    token = {Kind::End, isAtStart, line, {}};
    const int character = PeekCharacter();
    isAtStart = character == '{' || character == '}';
    if (character == endOfFile) {
        return token;
    }
    if (isAtStart) {
        TakeCharacter();
        token.kind = character == '{' ? Kind::OpenBrace : Kind::CloseBrace;
    }
    else if (character == '"') {
        ReadQuoted();
    }
    else {
        ReadWord();
    }
    return token;
}

void BlockLexer::Fault(int faultLine, const char* fault) const
{
    if (listener != nullptr) {
        listener->OnFault(faultLine, fault);
    }
}

/// The character \p ahead places after the next one, as an unsigned byte, or `endOfFile`.
int BlockLexer::PeekCharacter(std::size_t ahead)
{
    if (position + ahead >= filled) {
        Refill();
    }
    return position + ahead < filled ? static_cast<unsigned char>(buffer[position + ahead]) : endOfFile;
}

/// Moves the remaining bytes to the front and reads more after them.
void BlockLexer::Refill()
{
    std::copy(buffer.begin() + position, buffer.begin() + filled, buffer.begin());
    filled -= position;
    position = 0;
    filled += file.Read(buffer.data() + filled, buffer.size() - filled, 1);
}

bool BlockLexer::IsAtComment(bool isInWord)
{
    const int character = PeekCharacter();
    return (character == '#' && !isInWord) || (character == '/' && PeekCharacter(1) == '/');
}

void BlockLexer::SkipToToken()
{
    while (true) {
        const int character = PeekCharacter();
        if (IsLineEnd(character)) {
            TakeLineEnd();
        }
        else if (IsBlank(character)) {
            TakeCharacter();
        }
        else if (IsAtComment(false)) {
            SkipLine();
        }
        else {
            return;
        }
    }
}

void BlockLexer::SkipLine()
{
    while (PeekCharacter() != endOfFile && !IsLineEnd(PeekCharacter())) {
        TakeCharacter();
    }
}

void BlockLexer::TakeLineEnd()
{
    const bool isPair = PeekCharacter() == '\r' && PeekCharacter(1) == '\n';
    position += isPair ? 2 : 1;
    ++line;
    isAtStart = true;
}

void BlockLexer::ReadWord()
{
    textLength = 0;
    while (true) {
        const int character = PeekCharacter();
        if (character == endOfFile || IsLineEnd(character) || IsBlank(character) || character == '{' ||
            character == '}' || character == '"' || IsAtComment(true)) {
            break;
        }
        Append(static_cast<char>(character));
        TakeCharacter();
    }
    FinishText(token.isFirst && text[0] == '*' ? Kind::Keyword : Kind::Word);
}

void BlockLexer::ReadQuoted()
{
    textLength = 0;
    TakeCharacter();
    while (PeekCharacter() != '"') {
        const int character = PeekCharacter();
        if (character == endOfFile || IsLineEnd(character)) {
            Fault(token.line, "a text has no closing quote on its line");
            token.kind = Kind::Broken;
            return;
        }
        // A zero would truncate the text.
        Append(character != 0 ? static_cast<char>(character) : ' ');
        TakeCharacter();
    }
    TakeCharacter();
    FinishText(Kind::Quoted);
}

/// Stores characters that fit and counts the others, up to the first that does not fit.
void BlockLexer::Append(char character)
{
    if (textLength < text.size() - 1) {
        text[textLength] = character;
    }
    textLength = std::min(textLength + 1, text.size());
}

void BlockLexer::FinishText(Kind kind)
{
    if (textLength == text.size()) {
        Fault(token.line, "a word or text is too long");
        token.kind = Kind::Broken;
        return;
    }
    text[textLength] = '\0';
    token.kind = kind;
    token.text = std::string_view(text.data(), textLength);
}

} // namespace Quon
