#include "harmonet/engine/NativePath.h"

#include "harmonet/engine/windows/Paths.h"
#include "harmonet/engine/windows/Utf16.h"

#include <algorithm>
#include <array>

namespace Quon::NativePath
{

namespace
{

constexpr std::size_t longestPath = 32767;
constexpr std::size_t longestPart = 255;
constexpr std::string_view separators = "/\\";

/// Removes the first part from the name and returns it.
std::string_view TakePart(std::string_view& name)
{
    const std::string_view part = name.substr(0, std::min(name.find_first_of(separators), name.size()));
    name.remove_prefix(std::min(part.size() + 1, name.size()));
    return part;
}

bool IsNothing(std::string_view part)
{
    return part.empty() || part == ".";
}

/// Joins the parts, without empty and `.` parts, with this separator.
EngineString Joined(std::string_view name, char separator)
{
    EngineString joined;
    while (!name.empty()) {
        const std::string_view part = TakePart(name);
        if (!IsNothing(part)) {
            joined += joined.empty() ? "" : std::string_view(&separator, 1);
            joined += part;
        }
    }
    return joined;
}

EngineString InCapitals(std::string_view text)
{
    EngineString capitals(text);
    for (char& letter : capitals) {
        letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    }
    return capitals;
}

/// A device name is reserved in every folder, with any extension.
bool IsDevice(std::string_view part)
{
    std::string_view stem = part.substr(0, part.find('.'));
    stem = stem.substr(0, stem.find_last_not_of(' ') + 1);
    const EngineString name = InCapitals(stem);
    constexpr std::array<std::string_view, 6> whole = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    if (std::find(whole.begin(), whole.end(), std::string_view(name)) != whole.end()) {
        return true;
    }
    const std::string_view port = name;
    if (!port.starts_with("COM") && !port.starts_with("LPT")) {
        return false;
    }
    // Superscript digits count as digits.
    constexpr std::array<std::string_view, 13> numbers = {
        "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "\u00B9", "\u00B2", "\u00B3"};
    return std::find(numbers.begin(), numbers.end(), port.substr(3)) != numbers.end();
}

bool HasForbidden(std::string_view part)
{
    return std::any_of(part.begin(), part.end(), [](char letter) {
        return (letter >= 0 && letter < ' ') ||
            std::string_view("<>:\"|?*").find(letter) != std::string_view::npos;
    });
}

bool IsTooLong(std::string_view part)
{
    std::wstring wide;
    return !ToUtf16(part, wide) || wide.size() > longestPart;
}

/// The system drops trailing dots and blanks, so such a name would denote another file.
bool IsPlainName(std::string_view part)
{
    return part.back() != '.' && part.back() != ' ' && !HasForbidden(part) && !IsDevice(part) &&
        !IsTooLong(part);
}

bool IsFolder(HANDLE handle)
{
    BY_HANDLE_FILE_INFORMATION information{};
    return GetFileInformationByHandle(handle, &information) != 0 &&
        (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// Whether a part of the path after its first \p rootUnits is a link of any kind.
bool HasLink(const std::wstring& path, std::size_t rootUnits)
{
    for (std::size_t end = rootUnits; end < path.size();) {
        end = std::min(path.find(L'\\', end + 1), path.size());
        const DWORD attributes = GetFileAttributesW(path.substr(0, end).c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
            return true;
        }
    }
    return false;
}

/// The path of the open file. If the system cannot determine it, as Wine for a long path, the path by which
/// it was opened if that contains no link after its first \p rootUnits.
EngineString FindPlace(HANDLE handle, const std::wstring& opened, std::size_t rootUnits)
{
    const std::wstring place = FinalPath(handle);
    if (!place.empty()) {
        return ToUtf8(place);
    }
    return HasLink(opened, rootUnits) ? EngineString() : ToUtf8(opened);
}

EngineString FindFolder(const std::wstring& path)
{
    constexpr std::size_t driveUnits = 6; // "\\?\C:"
    const ScopedHandle folder(OpenExisting(path, FILE_READ_ATTRIBUTES));
    return folder.IsValid() && IsFolder(folder.Get()) ? FindPlace(folder.Get(), path, driveUnits)
                                                      : EngineString();
}

} // namespace

EngineString FindFolder(const char* folder)
{
    return FindFolder(ExtendedPath(folder));
}

Result CheckName(std::string_view name)
{
    const bool hasDrive = name.size() >= 2 && name[1] == ':';
    if (hasDrive || separators.find(name.front()) != std::string_view::npos) {
        return File::OutsideRoot;
    }
    std::wstring wide;
    if (!ToUtf16(name, wide) || wide.size() >= longestPath) {
        return File::BadName;
    }
    while (!name.empty()) {
        const std::string_view part = TakePart(name);
        if (part == "..") {
            return File::OutsideRoot;
        }
        if (!IsNothing(part) && !IsPlainName(part)) {
            return File::BadName;
        }
    }
    return File::Opened;
}

Result Resolve(const EngineString& root, std::string_view name, EngineString& path)
{
    const EngineString inside = root.ends_with('\\') ? root : root + '\\';
    const EngineString whole = inside + Joined(name, '\\');
    const std::wstring extended = ExtendedPath(whole.c_str());
    const ScopedHandle file(OpenExisting(extended, FILE_READ_ATTRIBUTES));
    if (!file.IsValid()) {
        const Result result = ResultOfLastError();
        return FindFolder(ExtendedPath(root.c_str())).empty() ? Result(File::NoRoot) : result;
    }
    // The name itself cannot leave the root, but a link in the path can.
    const EngineString resolved = FindPlace(file.Get(), extended, ExtendedPath(root.c_str()).size());
    if (!resolved.starts_with(inside)) {
        return resolved == root ? File::NotAFile : File::OutsideRoot;
    }
    const bool asksForFolder = separators.find(name.back()) != std::string_view::npos;
    if (asksForFolder && !IsFolder(file.Get())) {
        return File::NotFound;
    }
    path = resolved;
    return File::Opened;
}

bool FoldName(std::string_view name, EngineString& folded)
{
    std::wstring wide;
    if (!ToUtf16(Joined(name, '/'), wide) || wide.empty()) {
        return false;
    }
    const int units = static_cast<int>(wide.size());
    std::wstring capitals(wide.size(), L'\0');
    if (LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, wide.data(), units, capitals.data(), units,
            nullptr, nullptr, 0) != units) {
        return false;
    }
    const EngineString result = ToUtf8(capitals);
    if (result == name) {
        return false;
    }
    folded = result;
    return true;
}

} // namespace Quon::NativePath
