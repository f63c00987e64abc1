#pragma once

#include "harmonet/engine/Alloc.h"

namespace Quon
{

/// What the file name of a loadable library ends with on this platform.
#if defined(_WIN32)
constexpr const char* dynamicLibrarySuffix = ".dll";
#elif defined(__APPLE__)
constexpr const char* dynamicLibrarySuffix = ".dylib";
#else
constexpr const char* dynamicLibrarySuffix = ".so";
#endif

/// A library that is loaded at run time. OS::CreateDynamicLibrary() makes one; the caller owns it and deletes
/// it. Task thread only.
class HARMONET_ENGINE_API DynamicLibrary : public Allocated
{
public:
    /// \p newFolders are looked through first for a name without a folder, in their order.
    explicit DynamicLibrary(const EngineVector<EngineString>& newFolders);
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    /// Loads the library of that file name, and closes first what the object still holds.
    ///
    /// A name without a folder is looked for in the host's driver folders, then in the folder `harmonet`
    /// beside the engine library, then beside that library, and what cannot be loaded is skipped; if there is
    /// no such file, the platform's loader looks by its own rules. A name with a folder is taken as it
    /// stands. A file that is no library, or only the first part of one, is refused. False if nothing could
    /// be loaded; then the object holds nothing. May block on the disk, and runs the code that the library
    /// has for its start.
    virtual bool Open(const char* name);

    /// Unloads the library; does nothing if there is none. No code, object or text of it may be used
    /// afterwards.
    virtual void Close();

    /// Stores the address of the symbol, valid until Close(). False, and null stored, if the library has no
    /// such symbol or none is open.
    virtual bool GetSymbol(void** address, const char* name);

    /// Closes.
    virtual ~DynamicLibrary();

private:
    EngineVector<EngineString> Places() const;
    bool OpenFile(const EngineString& path);
    bool Load(const char* path);

    EngineVector<EngineString> folders;
    void* handle = nullptr;
};

} // namespace Quon
