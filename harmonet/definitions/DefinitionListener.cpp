#include "harmonet/definitions/DefinitionListener.h"

#include "harmonet/engine/Messages.h"

#include <algorithm>

namespace Quon
{

namespace
{

constexpr const char* stops = "; reading stops here";
constexpr const char* ignored = " and is ignored";

template<class... Parts>
EngineString Join(const Parts&... parts)
{
    EngineString text;
    (Messages::Append(text, parts), ...);
    return text;
}

// The two most common mistakes.
const char* HintFor(std::string_view keyword)
{
    const auto isSmall = [](char letter) { return letter >= 'a' && letter <= 'z'; };
    if (keyword == "*SET_FREQUENCY") {
        return " (it is spelt *SET_FRQUENCY)";
    }
    return std::any_of(keyword.begin(), keyword.end(), isSmall) ? " (keywords are written in capitals)" : "";
}

EngineString DescribeUnreadable(const DefinitionRemark& remark)
{
    return remark.found
        ? Join(remark.keyword, ": expected ", remark.text, ", got '", remark.found, "'", stops)
        : Join(remark.keyword, ": expected ", remark.text, ", got nothing", stops);
}

} // namespace

DefinitionListener::~DefinitionListener() = default;

void DefinitionListener::OnKeyword(const PString&, const PString&, int) {}

EngineString DescribeRemark(const DefinitionRemark& remark)
{
    const PString& keyword = remark.keyword;
    switch (remark.fault) {
    case DefinitionFault::NoDefinition:
        return "there is no *SOUND_DEFINITION with a block";
    case DefinitionFault::NoFile:
        return "*FILE does not name a sound file";
    case DefinitionFault::OutsideDefinition:
        return Join(keyword, " is outside the definition", ignored);
    case DefinitionFault::UnknownKeyword:
        return Join(keyword, " is unknown here", HintFor(keyword.GetView()), ignored);
    case DefinitionFault::LeftOver:
        return Join(keyword, ": extra values are ignored");
    case DefinitionFault::Unreadable:
        return DescribeUnreadable(remark);
    case DefinitionFault::Refused:
        return Join(keyword, " ", remark.value, " is below ", remark.minimum, stops);
    case DefinitionFault::OutOfRange:
        return Join(keyword, " ", remark.value, " is outside ", remark.minimum, " to ", remark.maximum);
    case DefinitionFault::RateDropped:
        return "a sound with effects cannot change its rate; the requested rate is ignored";
    case DefinitionFault::NoBlock:
        return Join(keyword, " has no block", stops);
    case DefinitionFault::TooFewPoints:
        return Join("a line needs two points", stops);
    case DefinitionFault::Lost:
        return Join(keyword, " is lost: reading stopped before it");
    case DefinitionFault::Text:
        break;
    }
    return remark.text;
}

} // namespace Quon
