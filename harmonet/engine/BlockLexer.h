#pragma once

#include "harmonet/engine/Alloc.h"

#include <array>
#include <string_view>

namespace Quon
{

class BlockReaderListener;
class File;

/// The tokenizer of BlockReader, which documents the syntax. Internal to the engine; owned by the reader.
class BlockLexer : public Allocated
{
public:
    enum class Kind
    {
        /// The first word in its line or after a brace, beginning with an asterisk.
        Keyword,
        Word,
        Quoted,
        /// A word or quoted text that cannot be read; the listener has been notified.
        Broken,
        OpenBrace,
        CloseBrace,
        End,
    };

    struct Token
    {
        Kind kind = Kind::End;
        /// Only braces precede it on its line, so it is not a value of a keyword.
        bool isFirst = false;
        int line = 0;
        /// Zero-terminated; valid until the next token is read.
        std::string_view text;

        bool IsValue() const
        {
            return !isFirst && (kind == Kind::Word || kind == Kind::Quoted || kind == Kind::Broken);
        }
    };

    BlockLexer(File& newFile, BlockReaderListener* newListener);

    void SetListener(BlockReaderListener* newListener) { listener = newListener; }

    /// Returns the next token without consuming it; Take() does that.
    const Token& Peek();
    void Take() { isPeeked = false; }

    /// Notifies the listener, if there is one.
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

    /// The zero-terminated text of the token.
    std::array<char, 4096> text;
    std::size_t textLength = 0;
};

} // namespace Quon
