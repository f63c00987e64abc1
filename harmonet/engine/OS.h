#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/DynamicLibrary.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/engine/Options.h"

namespace Quon
{

/// The host, as the library sees it: its configuration and its way to load libraries. The host makes one
/// before anything else and keeps it while the sound system runs. The first one also makes the store of
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

    /// A new object that holds no library yet and belongs to the caller. It knows the driver folders added so
    /// far.
    virtual DynamicLibrary* CreateDynamicLibrary() const;

    /// Adds a folder in which output drivers are looked for, behind those added before. A path of the
    /// operating system; it need not exist yet. Null and "" are ignored.
    void AddDriverFolder(const char* folder);

    /// Sets who hears why something fails or was passed over (Messages.h), in all libraries of the process:
    /// the hook that was set last counts, whichever object it was set on. Null is nobody, as at the start. To
    /// hear of everything, set it before the options. It stays until the end of this object.
    void SetMessageHook(MessageHook hook, void* user = nullptr);

private:
    mutable Options options;
    EngineVector<EngineString> driverFolders;
};

} // namespace Quon
