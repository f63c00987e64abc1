#include "harmonet/engine/ResourceTypeBase.h"

#include <algorithm>

namespace Quon
{

namespace
{

char LowerCase(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool IsSame(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
        [](char left, char right) { return LowerCase(left) == LowerCase(right); });
}

/// Whether \p text is \p ending, or ends with a dot and \p ending.
bool EndsWith(std::string_view text, std::string_view ending)
{
    if (text.size() <= ending.size()) {
        return IsSame(text, ending);
    }
    const std::size_t rest = text.size() - ending.size();
    return text[rest - 1] == '.' && IsSame(text.substr(rest), ending);
}

} // namespace

ResourceTypeBase::ResourceTypeBase(const PString& newName, const UId& newTypeID, const UId& newCommonID)
    : typeName(newName)
    , typeID(newTypeID)
    , commonID(newCommonID)
{
}

ResourceTypeBase::~ResourceTypeBase() = default;

Resource* ResourceTypeBase::CreateOnTheFly(const PString&, const ResourceDatabase*) const
{
    return nullptr;
}

bool ResourceTypeBase::Takes(std::string_view fileName) const
{
    const std::size_t separator = fileName.find_last_of("/\\");
    const std::string_view lastPart =
        separator != std::string_view::npos ? fileName.substr(separator + 1) : fileName;
    return !typeName.IsEmpty() && EndsWith(lastPart, typeName.GetView());
}

bool ResourceTypeBase::IsText() const
{
    return EndsWith(typeName.GetView(), "txt");
}

} // namespace Quon
