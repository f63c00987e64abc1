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
        return "is not there";
    case Quon::File::NotAFile:
        return "is not a file";
    case Quon::File::NotReadable:
        return "may not be read";
    case Quon::File::Empty:
        return "is empty";
    case Quon::File::TooLarge:
        return "has 2 GiB or more";
    case Quon::File::OutsideRoot:
        return "lies outside the folder of the assets";
    case Quon::File::BadName:
        return "is no name of a file";
    default:
        return "cannot be opened";
    }
}

} // namespace Tool
