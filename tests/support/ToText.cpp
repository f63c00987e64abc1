#include "tests/support/Recording.h"

#include <charconv>

namespace Quon
{

std::string ToText(float value)
{
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value + 0.0F).ptr;
    return std::string(text, end);
}

std::string ToText(const Vector3& vector)
{
    return ToText(vector.x) + ' ' + ToText(vector.y) + ' ' + ToText(vector.z);
}

} // namespace Quon
