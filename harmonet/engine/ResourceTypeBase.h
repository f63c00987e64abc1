#pragma once

#include "harmonet/engine/PString.h"
#include "harmonet/engine/PluginType.h"
#include "harmonet/engine/UId.h"

#include <string_view>

namespace Quon
{

class Resource;
class ResourceDatabase;

/// A kind of resource: it says which file names it takes, and makes the objects for them. Plug-in libraries
/// derive from it, make one object of each kind with `new` and leave it to the plug-in registry. Task thread
/// only.
class HARMONET_ENGINE_API ResourceTypeBase : public PluginType
{
public:
    /// Enters the type in the plug-in registry. \p newName is the ending of the file names that it takes,
    /// without the point before it, and may itself contain points.
    ResourceTypeBase(const PString& newName, const UId& newTypeID, const UId& newCommonID);

    /// Makes a resource of that name, not loaded yet. The caller owns it.
    virtual Resource* Create(const PString& name, const ResourceDatabase* database) const = 0;

    /// Bytes of an object that Create() makes.
    virtual int GetSize() const = 0;

    /// Makes a resource that has no file behind it. This one makes none and gives null.
    virtual Resource* CreateOnTheFly(const PString& name, const ResourceDatabase* database) const;

    /// The ending of the file names, and the identifiers of this type and of the family that it
    /// belongs to.
    const PString& GetName() const { return typeName; }
    const UId& GetTypeID() const { return typeID; }
    const UId& GetCommonID() const { return commonID; }

    /// The file name ends with a point and the type's name, or is the type's name, in any case of ASCII
    /// letters.
    bool Takes(std::string_view fileName) const;

    /// The files are text, whose content goes straight to Resource::LoadTxt(). So are those of a type named
    /// "txt", or ending in ".txt"; the resources of the others are asked by Resource::Load() first.
    bool IsText() const;

protected:
    ~ResourceTypeBase() override;

private:
    PString typeName;
    UId typeID;
    UId commonID;
};

} // namespace Quon
