#include "tools/harmonet/Format.h"

#include "harmonet/engine/File.h"

#include <array>
#include <cstdio>

namespace Tool
{

std::string FormatNumber(double number)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.6g", number);
    return text.data();
}

std::string FormatOpenCode(int openCode)
{
    switch (openCode) {
    case Quon::File::NotFound:
        return "does not exist";
    case Quon::File::NotAFile:
        return "is not a file";
    case Quon::File::NotReadable:
        return "is not readable";
    case Quon::File::Empty:
        return "is empty";
    case Quon::File::TooLarge:
        return "is 2 GiB or larger";
    case Quon::File::OutsideRoot:
        return "is outside the asset folder";
    case Quon::File::BadName:
        return "is not a valid file name";
    default:
        return "cannot be opened";
    }
}

} // namespace Tool
