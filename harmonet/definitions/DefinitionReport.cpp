#include "harmonet/definitions/DefinitionReport.h"

namespace Quon
{

namespace
{

DefinitionFault ToFault(const BlockReaderListener::Skipped& skipped)
{
    if (skipped.isAfterEnd) {
        return DefinitionFault::Lost;
    }
    if (skipped.wasAsked) {
        return DefinitionFault::LeftOver;
    }
    return skipped.depth == 0 ? DefinitionFault::OutsideDefinition : DefinitionFault::UnknownKeyword;
}

} // namespace

void DefinitionReport::OnKeyword(const PString& block, const PString& keyword, int line) const
{
    if (listener) {
        listener->OnKeyword(block, keyword, line);
    }
}

void DefinitionReport::OnFault(DefinitionFault fault, const PString& keyword, int line) const
{
    if (listener) {
        listener->OnRemark({fault, line, keyword});
    }
}

void DefinitionReport::OnFault(DefinitionFault fault) const
{
    if (listener) {
        listener->OnRemark({fault, 0, PString()});
    }
}

void DefinitionReport::CheckRange(const PString& keyword, const BlockReader& reader, double value,
    double minimum, double maximum, DefinitionFault fault) const
{
    if (listener && !(value >= minimum && value <= maximum)) {
        listener->OnRemark({fault, reader.GetLine(), keyword, nullptr, nullptr, value, minimum, maximum});
    }
}

void DefinitionReport::OnUnreadableWord(
    const PString& keyword, int line, const char* wanted, const char* found) const
{
    if (listener) {
        listener->OnRemark({DefinitionFault::Unreadable, line, keyword, wanted, found});
    }
}

void DefinitionReport::OnSkipped(const Skipped& skipped)
{
    const DefinitionFault fault = ToFault(skipped);
    if (fault != DefinitionFault::LeftOver || skipped.line != unreadableLine) {
        listener->OnRemark({fault, skipped.line, skipped.keyword});
    }
}

void DefinitionReport::OnUnreadable(const PString& keyword, int line, const char* wanted, const char* found)
{
    unreadableLine = line;
    listener->OnRemark({DefinitionFault::Unreadable, line, keyword, wanted, found});
}

void DefinitionReport::OnFault(int line, const char* fault)
{
    listener->OnRemark({DefinitionFault::Text, line, PString(), fault});
}

} // namespace Quon
