#pragma once

#include "harmonet/engine/PString.h"
#include "harmonet/engine/PluginType.h"
#include "harmonet/engine/UId.h"

#include <string_view>

namespace Quon
{

class Resource;
class ResourceDatabase;

/// A resource type: it determines which file names it handles and creates the objects for them. Plug-in
/// libraries derive from it and create one object per type with `new`; the plug-in registry owns it. Task
/// thread only.
class HARMONET_ENGINE_API ResourceTypeBase : public PluginType
{
public:
    /// Adds the type to the plug-in registry. \p newName is the extension of the file names it handles,
    /// without the leading dot; it may contain dots.
    ResourceTypeBase(const PString& newName, const UId& newTypeID, const UId& newCommonID);

    /// Creates a resource of that name that is not loaded yet. The caller owns it.
    virtual Resource* Create(const PString& name, const ResourceDatabase* database) const = 0;

    /// Size in bytes of the objects that Create() creates.
    virtual int GetSize() const = 0;

    /// Creates a resource without a file. The default returns null.
    virtual Resource* CreateOnTheFly(const PString& name, const ResourceDatabase* database) const;

    /// The ending of the file names, and the identifiers of this type and of the family that it
    /// belongs to.
    const PString& GetName() const { return typeName; }
    const UId& GetTypeID() const { return typeID; }
    const UId& GetCommonID() const { return commonID; }

    /// Whether the file name is the type's name or ends with a dot and the type's name, ignoring the case of
    /// ASCII letters.
    bool Takes(std::string_view fileName) const;

    /// Whether the files are text and are loaded with Resource::LoadTxt(). This holds for a type named "txt"
    /// or with a name that ends in ".txt"; resources of other types are loaded with Resource::Load() first.
    bool IsText() const;

protected:
    ~ResourceTypeBase() override;

private:
    PString typeName;
    UId typeID;
    UId commonID;
};

} // namespace Quon
