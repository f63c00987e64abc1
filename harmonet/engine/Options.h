#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/String.h"

#include <list>
#include <string_view>

namespace Quon
{

/// The engine's configuration: texts by key, from a file, from the command line and by call. It belongs to
/// the OS object. Keys are compared case by case. Task thread only.
///
/// The text form has one option a line, `Key = Value`. Blanks around key and value do not count; a value in
/// double quotes keeps its blanks. Lines that are empty or begin with `#` or `//` are passed over.
class HARMONET_ENGINE_API Options : public Allocated
{
public:
    Options();
    ~Options();
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;

    /// Sets an option; a value that stood there is replaced. A null text takes the option away. A walk of
    /// GetNext() over this key begins anew.
    void Set(const char* key, const char* text);

    /// Sets the option that `Key=Value` names. False, and no change, if there is no `=` or no key before it.
    bool SetFromText(const char* keyAndValue);

    /// Reads a file of options, \p path being a path of the operating system. False if the file cannot be
    /// read, is larger than a mebibyte, or holds a line that is no option; the good lines are set all the
    /// same. The line that failed first is stored in \p badLine, which may be null: 0 if the file could not
    /// be read.
    bool ReadFile(const char* path, int* badLine = nullptr);

    /// Sets what stands behind each `--option` as SetFromText() does; `--option=Key=Value` will do as well.
    /// All other arguments are left to the program, also what follows `--`. False if one of the options was
    /// no option; the good ones are set all the same.
    bool ReadCommandLine(int argumentCount, const char* const* arguments);

    /// Sets \p value to the option's integer, or to the default if the option is not set or is not wholly a
    /// decimal number of 32 bits with sign. True if it was the option's.
    bool Get(const char* key, int& value, int defaultValue) const;

    /// Sets \p value to the option's text, or to the default (null: empty) if the option is not set. True if
    /// it was the option's.
    bool Get(const char* key, String& value, const char* defaultValue) const;

    /// Declares that the value of the key, set already or later, is a list separated by any of the characters
    /// of \p separators, and makes GetNext() begin with the first item. Null or "" makes it one item again.
    void SetSeperators(const char* key, const char* separators);

    /// Gives the next item of the list without blanks around it; empty items are passed over. False behind
    /// the last, \p value being unchanged, and so until SetSeperators() or Set() begins anew.
    bool GetNext(const char* key, String& value) const;

    /// Writes a note (Messages.h) for each option that is set and that nobody has asked for yet: its name may
    /// be misspelt. SoundSystem::Init() does this at its end.
    void ReportUnread() const;

private:
    struct Entry
    {
        EngineString key;
        EngineString text;
        EngineString separators;
        bool isSet = false;
        mutable bool wasRead = false;
        mutable std::size_t walkPosition = 0;
    };

    /// The entry, if it is set, noted as read; else null.
    const Entry* Read(std::string_view key) const;
    Entry& FindOrAdd(std::string_view key);
    bool SetFromLine(std::string_view line);

    std::list<Entry, EngineAllocator<Entry>> entries;
};

} // namespace Quon
