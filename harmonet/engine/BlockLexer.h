#pragma once

#include "harmonet/engine/Alloc.h"

#include <array>
#include <string_view>

namespace Quon
{

class BlockReaderListener;
class File;

/// Cuts the text of a BlockReader into its parts; the text form is told there. Internal to the engine, owned
/// by the reader.
class BlockLexer : public Allocated
{
public:
    enum class Kind
    {
        /// First in its line or behind a brace, beginning with an asterisk.
        Keyword,
        Word,
        Quoted,
        /// A word or quoted text that cannot be read; the listener has been told.
        Broken,
        OpenBrace,
        CloseBrace,
        End,
    };

    struct Token
    {
        Kind kind = Kind::End;
        /// Nothing stands before it in its line but braces, so that it is no value of a keyword.
        bool isFirst = false;
        int line = 0;
        /// Valid until the next token is looked at; a zero stands behind it.
        std::string_view text;

        bool IsValue() const
        {
            return !isFirst && (kind == Kind::Word || kind == Kind::Quoted || kind == Kind::Broken);
        }
    };

    BlockLexer(File& newFile, BlockReaderListener* newListener);

    void SetListener(BlockReaderListener* newListener) { listener = newListener; }

    /// The token that comes next. It stays next until Take().
    const Token& Peek();
    void Take() { isPeeked = false; }

    /// Tells the listener, if there is one.
    void Fault(int line, const char* fault) const;

private:
    static constexpr int endOfFile = -1;
    static constexpr std::size_t bufferLength = 4096;

    int PeekCharacter(std::size_t ahead = 0);
    void TakeCharacter() { ++position; }
    void Refill();

    bool IsAtComment(bool isInWord);
    void SkipToToken();
    void SkipLine();
    void TakeLineEnd();
    void ReadWord();
    void ReadQuoted();
    void Append(char character);
    void FinishText(Kind kind);

    File& file;
    BlockReaderListener* listener;

    std::array<char, bufferLength> buffer;
    std::size_t position = 0;
    std::size_t filled = 0;

    Token token;
    bool isPeeked = false;
    bool isAtStart = true;
    int line = 1;

    /// The text of the token and a zero.
    std::array<char, 4096> text;
    std::size_t textLength = 0;
};

} // namespace Quon
