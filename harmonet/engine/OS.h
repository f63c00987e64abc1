#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/DynamicLibrary.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/engine/Options.h"

namespace Quon
{

/// The host's services for the library: its configuration and the loading of libraries. The host creates one
/// before anything else and keeps it while the sound system runs. The first one also creates the cache of
/// interned strings. Task thread only.
class HARMONET_ENGINE_API OS : public Allocated
{
public:
    OS();
    virtual ~OS();
    OS(const OS&) = delete;
    OS& operator=(const OS&) = delete;

    /// The configuration, never null, owned by this object.
    Options* GetOptions() const;

    /// Returns a new object without a library, owned by the caller. It uses the driver folders added so far.
    virtual DynamicLibrary* CreateDynamicLibrary() const;

    /// Adds a folder in which output drivers are searched, after those added before. A native path; it need
    /// not exist yet. Null and "" are ignored.
    void AddDriverFolder(const char* folder);

    /// Sets the hook that receives the reasons of failures (Messages.h), in all libraries of the process. The
    /// hook set last is used, whichever object it was set on. Null, the initial value, means none. To receive
    /// all messages, set it before the options. It is removed when this object is destroyed.
    void SetMessageHook(MessageHook hook, void* user = nullptr);

private:
    mutable Options options;
    EngineVector<EngineString> driverFolders;
};

} // namespace Quon
