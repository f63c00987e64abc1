#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/File.h"
#include "harmonet/engine/PString.h"

#include <memory>

namespace Quon
{

/// Hears what a reader passes over, for a tool that reports on a file. Called from inside the reader's
/// operations; it must not use the reader.
class HARMONET_ENGINE_API BlockReaderListener
{
public:
    /// A keyword that was ignored, or of which something was left unread.
    struct Skipped
    {
        /// Asterisk included.
        const PString& keyword;
        /// Line of the keyword, counted from 1.
        int line;
        /// Values left behind in its line.
        int valueCount;
        /// It has a block that nobody entered.
        bool hasBlock;
        /// Something of it was asked for, be it in vain. False for a keyword that was ignored altogether.
        bool wasAsked;
        /// It stands behind the place where the reading of its block ended. False for one that Next() gave
        /// out.
        bool isBehindEnd;
        /// How many blocks it stands in; 0 at the top level of the file.
        int depth;
    };

    BlockReaderListener() = default;
    BlockReaderListener(const BlockReaderListener&) = default;
    BlockReaderListener& operator=(const BlockReaderListener&) = default;
    virtual ~BlockReaderListener();

    /// Something was skipped.
    virtual void OnSkipped(const Skipped& skipped) = 0;

    /// A read operation found no value of its kind: \p wanted names the kind, \p found is the text that
    /// stands there, or null if the line has no further value.
    virtual void OnUnreadable(const PString& keyword, int line, const char* wanted, const char* found) = 0;

    /// Something in the text form is wrong.
    virtual void OnFault(int line, const char* fault) = 0;
};

/// Reads a text file as a tree of keywords, each with its values and an optional block below it. Whoever
/// loads such a file makes a reader beside the open file; the readers of the inner blocks belong to it. One
/// thread at a time.
///
/// The text form:
///
///     // A comment, to the end of the line.
///     *KEYWORD value "a value with blanks" 0.5     # another comment
///     *BLOCK
///     {
///         *INNER 1 2 3
///         *DEEPER { *LEAF true }
///     }
///
/// - A keyword is a word that begins with `*` and stands first in its line, or behind a brace. There is one
///   keyword a line, with its values behind it; a value is never taken from the next line.
/// - A block stands in braces behind a keyword and its values, in the same line or the following ones.
/// - A value is a bare word, which ends at a blank, a brace, a double quote or `//`, or a text in double
///   quotes, which ends in the same line and has no escapes.
/// - `//` begins a comment anywhere outside quotes, `#` only where a word could begin.
/// - Lines end with LF, CR LF or CR. Other control characters count as blanks. A byte order mark at the start
///   of the file is passed over. Letters beyond ASCII are kept as they are.
/// - Numbers are written with a point, whatever the locale. `true`, `yes`, `on`, `1` and `false`, `no`,
///   `off`, `0` are the truth values, in any case of letters.
/// - A keyword that nobody asks for is passed over with its values and its block. What cannot belong anywhere
///   (text without a keyword, a brace too many) is passed over too. The end of the file ends all open blocks.
/// - A word or text longer than `maxTokenLength` bytes cannot be read, as a keyword or as a value. Blocks
///   below `maxDepth` cannot be entered; they are passed over, however deep.
class HARMONET_ENGINE_API BlockReader : public Allocated
{
public:
    /// The limits of the text form, in bytes and in blocks.
    static constexpr int maxTokenLength = 4095;
    static constexpr int maxDepth = 64;

    /// A reader without a file: Next() and all reads give false.
    BlockReader();
    ~BlockReader();
    BlockReader(const BlockReader&) = delete;
    BlockReader& operator=(const BlockReader&) = delete;

    /// Begins to read the open file from its current position. The file must stay open while the reader is
    /// used and is read bit by bit; one that ends early ends the text.
    void Init(File& file);

    /// Sets who hears of what is passed over, null for nobody. Not owned. Call it on the outermost reader,
    /// before Init() or behind it.
    void SetListener(BlockReaderListener* newListener);

    /// Gives the next keyword of this block, asterisk included, and passes over what is left of the one
    /// before. False at the end of the block or file, \p keyword being unchanged, and from then on.
    bool Next(PString& keyword);

    /// Enters the block behind the last keyword. Returns the reader for it, which belongs to this one and
    /// works until End(), or null if there is no block, or none that can be entered. Values before the block
    /// that were not read are passed over.
    BlockReader* Begin();

    /// Leaves the block that Begin() on this reader entered and passes over what is left in it. Next() on
    /// this reader does the same. Nothing happens if no block is entered.
    void End();

    /// Each takes one value of the last keyword. False if no value of that kind follows: then \p value is
    /// unchanged and the value, if there is one, stays for another read.
    bool ReadString(PString& value);
    /// See the text form for the words. Only bare words.
    bool ReadBool(bool& value);
    /// A decimal number with an optional sign that fits into 32 bits with sign. Only bare words.
    bool ReadInt(int& value);
    /// A decimal number with optional sign, point and exponent that a float can hold. Only bare words; no
    /// word for infinity or "not a number".
    bool ReadFloat(float& value);

    /// Takes up to \p count floats and returns how many it took.
    int ReadFloatv(float* values, int count);

    /// The line of the keyword that Next() gave last, on this reader or on one below it; 0 before the first.
    int GetLine() const;

private:
    class Text;

    BlockReader(Text& newText, int newDepth);

    bool IsCurrent() const;
    template<class Parse>
    bool ReadValue(const char* wanted, Parse parse);

    BlockReaderListener* listener = nullptr;
    /// Owned by the outermost reader, which has made it in Init().
    std::unique_ptr<Text> ownedText;
    /// The text that all readers of one tree share; null before Init().
    Text* text = nullptr;
    /// The reader of the blocks below this one, made once and used for each of them.
    std::unique_ptr<BlockReader> inner;
    int depth = 0;
};

} // namespace Quon
