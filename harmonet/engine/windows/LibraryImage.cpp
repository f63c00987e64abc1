#include "harmonet/engine/LibraryImage.h"

#include "harmonet/engine/windows/Paths.h"

#include <cstdint>

namespace Quon
{

namespace
{

#if defined(_M_ARM64) || defined(__aarch64__)
constexpr WORD nativeMachine = IMAGE_FILE_MACHINE_ARM64;
#else
constexpr WORD nativeMachine = sizeof(void*) == 8 ? IMAGE_FILE_MACHINE_AMD64 : IMAGE_FILE_MACHINE_I386;
#endif

template<class Record>
bool ReadAt(HANDLE file, std::uint64_t offset, Record& record)
{
    LARGE_INTEGER place{};
    place.QuadPart = static_cast<std::int64_t>(offset);
    DWORD got = 0;
    return SetFilePointerEx(file, place, nullptr, FILE_BEGIN) != 0 &&
        ReadFile(file, &record, sizeof(record), &got, nullptr) != 0 && got == sizeof(record);
}

bool IsLibraryHeader(const IMAGE_NT_HEADERS& header)
{
    return header.Signature == IMAGE_NT_SIGNATURE && header.FileHeader.Machine == nativeMachine &&
        (header.FileHeader.Characteristics & IMAGE_FILE_DLL) != 0;
}

bool IsWhole(HANDLE file, std::uint64_t fileSize)
{
    IMAGE_DOS_HEADER stub{};
    IMAGE_NT_HEADERS header{};
    if (!ReadAt(file, 0, stub) || stub.e_magic != IMAGE_DOS_SIGNATURE || stub.e_lfanew < 0) {
        return false;
    }
    const auto headerOffset = static_cast<std::uint64_t>(stub.e_lfanew);
    if (!ReadAt(file, headerOffset, header) || !IsLibraryHeader(header)) {
        return false;
    }
    const std::uint64_t sections =
        headerOffset + offsetof(IMAGE_NT_HEADERS, OptionalHeader) + header.FileHeader.SizeOfOptionalHeader;
    for (unsigned index = 0; index < header.FileHeader.NumberOfSections; ++index) {
        IMAGE_SECTION_HEADER section{};
        if (!ReadAt(file, sections + index * sizeof(section), section) ||
            std::uint64_t{section.PointerToRawData} + section.SizeOfRawData > fileSize) {
            return false;
        }
    }
    return true;
}

} // namespace

bool IsWholeLibraryImage(const char* path)
{
    const std::wstring extended = ExtendedPath(path);
    if (extended.empty()) {
        return false;
    }
    const ScopedHandle file(OpenExisting(extended, GENERIC_READ));
    LARGE_INTEGER size{};
    return file.IsValid() && GetFileType(file.Get()) == FILE_TYPE_DISK &&
        GetFileSizeEx(file.Get(), &size) != 0 &&
        IsWhole(file.Get(), static_cast<std::uint64_t>(size.QuadPart));
}

} // namespace Quon
