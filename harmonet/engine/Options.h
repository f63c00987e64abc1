#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/String.h"

#include <list>
#include <string_view>

namespace Quon
{

/// The engine's configuration: texts by key, read from a file or the command line or set by calls. Owned by
/// the OS object. Keys are case-sensitive. Task thread only.
///
/// The text format has one option per line, `Key = Value`. Blanks around key and value are ignored; a value
/// in double quotes keeps its blanks. Empty lines and lines that begin with `#` or `//` are skipped.
class HARMONET_ENGINE_API Options : public Allocated
{
public:
    Options();
    ~Options();
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;

    /// Sets an option and replaces an earlier value. A null text removes the option. Restarts the iteration
    /// of GetNext() over this key.
    void Set(const char* key, const char* text);

    /// Sets the option given as `Key=Value`. Returns false and changes nothing if there is no `=` or no key
    /// before it.
    bool SetFromText(const char* keyAndValue);

    /// Reads an options file from the native path \p path. Returns false if the file cannot be read, is
    /// larger than 1 MiB, or contains an invalid line; valid lines are still set. Stores the number of the
    /// first invalid line in \p badLine, which may be null; 0 if the file could not be read.
    bool ReadFile(const char* path, int* badLine = nullptr);

    /// Sets the argument after each `--option` with SetFromText(); `--option=Key=Value` is accepted too. All
    /// other arguments, and everything after `--`, are ignored. Returns false if one of the options is
    /// invalid; valid ones are still set.
    bool ReadCommandLine(int argumentCount, const char* const* arguments);

    /// Sets \p value to the option's integer, or to the default if the option is not set or is not a signed
    /// 32-bit decimal number. Returns true if the option's value was used.
    bool Get(const char* key, int& value, int defaultValue) const;

    /// Sets \p value to the option's text, or to the default (null: empty) if the option is not set. Returns
    /// true if the option's value was used.
    bool Get(const char* key, String& value, const char* defaultValue) const;

    /// Declares that the value of the key, whether set already or later, is a list separated by any of the
    /// characters in \p separators, and restarts GetNext() at the first item. Null or "" makes it a single
    /// item again.
    void SetSeperators(const char* key, const char* separators);

    /// Returns the next item of the list in \p value, without surrounding blanks; empty items are skipped.
    /// After the last item it returns false and leaves \p value unchanged, until SetSeperators() or Set()
    /// restarts it.
    bool GetNext(const char* key, String& value) const;

    /// Writes a note (Messages.h) for each option that is set but has not been read yet: its name may be
    /// misspelt. SoundSystem::Init() calls it at its end.
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

    /// Returns the entry and marks it as read; null if it is not set.
    const Entry* Read(std::string_view key) const;
    Entry& FindOrAdd(std::string_view key);
    bool SetFromLine(std::string_view line);

    std::list<Entry, EngineAllocator<Entry>> entries;
};

} // namespace Quon
