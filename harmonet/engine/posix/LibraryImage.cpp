#include "harmonet/engine/LibraryImage.h"

#include <cstdint>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#if __has_include(<link.h>) && __has_include(<elf.h>)
#define HARMONET_ELF_IMAGES 1
#include <cstring>
#include <elf.h>
#include <link.h>
#else
#define HARMONET_ELF_IMAGES 0
#endif

namespace Quon
{

namespace
{

#if HARMONET_ELF_IMAGES

using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);

constexpr unsigned char nativeClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;

template<class Record>
bool ReadAt(int file, std::uint64_t offset, Record& record)
{
    return pread(file, &record, sizeof(record), static_cast<off_t>(offset)) ==
        static_cast<ssize_t>(sizeof(record));
}

bool IsLibraryHeader(const Header& header)
{
    return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 && header.e_ident[EI_CLASS] == nativeClass &&
        header.e_type == ET_DYN && header.e_phentsize == sizeof(Segment);
}

bool IsWhole(int file, std::uint64_t fileSize)
{
    Header header{};
    if (!ReadAt(file, 0, header) || !IsLibraryHeader(header) || header.e_phoff > fileSize) {
        return false;
    }
    for (unsigned index = 0; index < header.e_phnum; ++index) {
        Segment segment{};
        if (!ReadAt(file, header.e_phoff + index * sizeof(Segment), segment)) {
            return false;
        }
        const bool isInside = segment.p_offset <= fileSize && segment.p_filesz <= fileSize - segment.p_offset;
        if (segment.p_type == PT_LOAD && !isInside) {
            return false;
        }
    }
    return true;
}

#else

bool IsWhole(int, std::uint64_t)
{
    return true;
}

#endif

} // namespace

bool IsWholeLibraryImage(const char* path)
{
    struct stat status
    {
    };
    // Check the name first: opening a pipe could block forever.
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    const int file = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) {
        return false;
    }
    const bool isWhole =
        fstat(file, &status) == 0 && IsWhole(file, static_cast<std::uint64_t>(status.st_size));
    close(file);
    return isWhole;
}

} // namespace Quon
