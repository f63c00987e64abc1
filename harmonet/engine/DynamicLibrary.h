#pragma once

#include "harmonet/engine/Alloc.h"

namespace Quon
{

/// The extension of loadable libraries on this platform.
#if defined(_WIN32)
constexpr const char* dynamicLibrarySuffix = ".dll";
#elif defined(__APPLE__)
constexpr const char* dynamicLibrarySuffix = ".dylib";
#else
constexpr const char* dynamicLibrarySuffix = ".so";
#endif

/// A library that is loaded at run time. OS::CreateDynamicLibrary() creates one; the caller owns and deletes
/// it. Task thread only.
class HARMONET_ENGINE_API DynamicLibrary : public Allocated
{
public:
    /// \p newFolders are searched first, in their order, for a name without a folder.
    explicit DynamicLibrary(const EngineVector<EngineString>& newFolders);
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    /// Loads the library of that file name, after closing the current one.
    ///
    /// A name without a folder is searched for in the host's driver folders, then in the folder `harmonet`
    /// next to the engine library, then in the engine library's own folder; files that cannot be loaded are
    /// skipped. If there is no such file, the platform's loader searches by its own rules. A name with a
    /// folder is used unchanged. A file that is not a library, or is truncated, is refused. Returns false if
    /// nothing could be loaded; no library is open then. May block on the disk, and runs the library's
    /// initialisation.
    virtual bool Open(const char* name);

    /// Unloads the library; does nothing if there is none. Its code, objects and texts must not be used
    /// afterwards.
    virtual void Close();

    /// Stores the address of the symbol, valid until Close(). Returns false and stores null if the library
    /// has no such symbol or none is open.
    virtual bool GetSymbol(void** address, const char* name);

    /// Same as Close().
    virtual ~DynamicLibrary();

private:
    EngineVector<EngineString> Places() const;
    bool OpenFile(const EngineString& path);
    bool Load(const char* path);

    EngineVector<EngineString> folders;
    void* handle = nullptr;
};

} // namespace Quon
