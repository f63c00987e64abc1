#pragma once

#include "harmonet/definitions/DefinitionListener.h"
#include "harmonet/engine/BlockReader.h"

namespace Quon
{

/// Turns the findings of reading a definition into remarks for an optional listener. Cheap to construct where
/// it is needed. Internal to the definitions.
class DefinitionReport final : public BlockReaderListener
{
public:
    explicit DefinitionReport(DefinitionListener* newListener)
        : listener(newListener)
    {
    }

    bool IsWanted() const { return listener != nullptr; }

    /// A keyword that a reader has returned on that line.
    void OnKeyword(const PString& block, const PString& keyword, int line) const;
    void OnFault(DefinitionFault fault, const PString& keyword, int line) const;
    /// A fault of the file as a whole.
    void OnFault(DefinitionFault fault) const;
    /// A value that is not one of the words of the keyword. Reading stops there.
    void OnUnreadableWord(const PString& keyword, int line, const char* wanted, const char* found) const;
    /// Remarks on a value out of range.
    void CheckRange(const PString& keyword, const BlockReader& reader, double value, double minimum,
        double maximum, DefinitionFault fault = DefinitionFault::OutOfRange) const;

    void OnSkipped(const Skipped& skipped) override;
    void OnUnreadable(const PString& keyword, int line, const char* wanted, const char* found) override;
    void OnFault(int line, const char* fault) override;

private:
    DefinitionListener* listener;
    int unreadableLine = 0; ///< Line of the last unreadable value, which already has its remark.
};

} // namespace Quon
