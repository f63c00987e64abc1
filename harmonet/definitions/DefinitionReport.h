#pragma once

#include "harmonet/definitions/DefinitionListener.h"
#include "harmonet/engine/BlockReader.h"

namespace Quon
{

/// Puts what the reading of a definition comes across into remarks, for a listener that need not be there.
/// Cheap to make where it is needed. Internal to the definitions.
class DefinitionReport final : public BlockReaderListener
{
public:
    explicit DefinitionReport(DefinitionListener* newListener)
        : listener(newListener)
    {
    }

    bool IsWanted() const { return listener != nullptr; }

    /// A keyword that a reader has given out in that line.
    void OnKeyword(const PString& block, const PString& keyword, int line) const;
    void OnFault(DefinitionFault fault, const PString& keyword, int line) const;
    /// A fault of the file as a whole.
    void OnFault(DefinitionFault fault) const;
    /// A value that is none of the words that the keyword takes. The reading stops there.
    void OnUnreadableWord(const PString& keyword, int line, const char* wanted, const char* found) const;
    /// Remarks on a value that lies outside its range.
    void CheckRange(const PString& keyword, const BlockReader& reader, double value, double least,
        double most, DefinitionFault fault = DefinitionFault::OutOfRange) const;

    void OnSkipped(const Skipped& skipped) override;
    void OnUnreadable(const PString& keyword, int line, const char* wanted, const char* found) override;
    void OnFault(int line, const char* fault) override;

private:
    DefinitionListener* listener;
    int unreadableLine = 0; ///< The last value that could not be read stands here, and has its remark.
};

} // namespace Quon
