#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/File.h"
#include "harmonet/engine/PString.h"

#include <memory>

namespace Quon
{

/// Receives what a reader skips, for a tool that reports on a file. Called from within the reader's
/// operations; it must not use the reader.
class HARMONET_ENGINE_API BlockReaderListener
{
public:
    /// A keyword that was ignored or not completely read.
    struct Skipped
    {
        /// Asterisk included.
        const PString& keyword;
        /// Line of the keyword, counted from 1.
        int line;
        /// Number of unread values on its line.
        int valueCount;
        /// Whether it has a block that was not entered.
        bool hasBlock;
        /// Whether a read was attempted, successful or not. False for a keyword that was ignored completely.
        bool wasAsked;
        /// Whether it comes after the point where reading of its block ended. False for a keyword returned by
        /// Next().
        bool isAfterEnd;
        /// Number of enclosing blocks; 0 at the top level of the file.
        int depth;
    };

    BlockReaderListener() = default;
    BlockReaderListener(const BlockReaderListener&) = default;
    BlockReaderListener& operator=(const BlockReaderListener&) = default;
    virtual ~BlockReaderListener();

    /// Something was skipped.
    virtual void OnSkipped(const Skipped& skipped) = 0;

    /// A read operation found no value of its type: \p wanted names the type, \p found is the text found
    /// instead, or null if the line has no further value.
    virtual void OnUnreadable(const PString& keyword, int line, const char* wanted, const char* found) = 0;

    /// The syntax is broken.
    virtual void OnFault(int line, const char* fault) = 0;
};

/// Reads a text file as a tree of keywords, each with its values and an optional block below it. A loader
/// creates a reader for an open file; that reader owns the readers of the inner blocks. One thread at a time.
///
/// The syntax:
///
///     // A comment, to the end of the line.
///     *KEYWORD value "a value with blanks" 0.5     # another comment
///     *BLOCK
///     {
///         *INNER 1 2 3
///         *DEEPER { *LEAF true }
///     }
///
/// - A keyword is a word that begins with `*` and is the first in its line, or follows a brace. There is one
///   keyword per line, followed by its values; a value is never taken from the next line.
/// - A block is enclosed in braces and follows a keyword and its values, on the same line or the following
///   ones.
/// - A value is a bare word, which ends at a blank, a brace, a double quote or `//`, or a text in double
///   quotes, which ends on the same line and has no escapes.
/// - `//` begins a comment anywhere outside quotes, `#` only at the start of a word.
/// - Lines end with LF, CR LF or CR. Other control characters count as blanks. A byte order mark at the start
///   of the file is skipped. Non-ASCII characters are kept unchanged.
/// - Numbers use a decimal point, whatever the locale. `true`, `yes`, `on`, `1` and `false`, `no`, `off`, `0`
///   are the Boolean values, in any case.
/// - A keyword that is not read is skipped with its values and its block. Text without a keyword and extra
///   braces are skipped too. The end of the file closes all open blocks.
/// - A word or text longer than `maxTokenLength` bytes cannot be read, neither as a keyword nor as a value.
///   Blocks nested deeper than `maxDepth` cannot be entered; they are skipped, however deep.
class HARMONET_ENGINE_API BlockReader : public Allocated
{
public:
    /// The limits of the text form, in bytes and in blocks.
    static constexpr int maxTokenLength = 4095;
    static constexpr int maxDepth = 64;

    /// Constructs a reader without a file: Next() and all reads return false.
    BlockReader();
    ~BlockReader();
    BlockReader(const BlockReader&) = delete;
    BlockReader& operator=(const BlockReader&) = delete;

    /// Starts reading the open file at its current position. The file is read piece by piece and must stay
    /// open while the reader is used; a file that ends early ends the text.
    void Init(File& file);

    /// Sets the listener that receives what is skipped, null for none. Not owned. Call it on the outermost
    /// reader, before or after Init().
    void SetListener(BlockReaderListener* newListener);

    /// Returns the next keyword of this block, including the asterisk, in \p keyword, and skips the rest of
    /// the previous one. From the end of the block or file on it returns false and leaves \p keyword
    /// unchanged.
    bool Next(PString& keyword);

    /// Enters the block of the last keyword. Returns the reader for it, which this one owns and which is
    /// valid until End(), or null if there is no block or it cannot be entered. Unread values before the
    /// block are skipped.
    BlockReader* Begin();

    /// Leaves the block that Begin() on this reader entered and skips the rest of it. Next() on this reader
    /// does the same. Does nothing if no block is entered.
    void End();

    /// Each reads one value of the last keyword. Returns false if no value of that type follows: \p value is
    /// unchanged then, and the value, if there is one, is left for another read.
    bool ReadString(PString& value);
    /// See the syntax for the words. Only bare words.
    bool ReadBool(bool& value);
    /// A decimal number with an optional sign that fits into a signed 32-bit integer. Only bare words.
    bool ReadInt(int& value);
    /// A decimal number with optional sign, point and exponent that a float can hold. Only bare words;
    /// infinity and NaN are not accepted.
    bool ReadFloat(float& value);

    /// Reads up to \p count floats and returns the number read.
    int ReadFloatv(float* values, int count);

    /// The line of the keyword that Next() returned last, on this reader or an inner one; 0 before the first.
    int GetLine() const;

private:
    class Text;

    BlockReader(Text& newText, int newDepth);

    bool IsCurrent() const;
    template<class Parse>
    bool ReadValue(const char* wanted, Parse parse);

    BlockReaderListener* listener = nullptr;
    /// Owned by the outermost reader, which creates it in Init().
    std::unique_ptr<Text> ownedText;
    /// The text that all readers of one tree share; null before Init().
    Text* text = nullptr;
    /// The reader of the blocks below this one, created once and reused.
    std::unique_ptr<BlockReader> inner;
    int depth = 0;
};

} // namespace Quon
