#include "harmonet/kernel/QuonGetPlugins.h"

#include "harmonet/definitions/SoundDefResource.h"
#include "harmonet/definitions/SoundResource.h"
#include "harmonet/engine/ResourceType.h"

namespace Quon
{

namespace
{

// The permanent identifiers of the resource types.
constexpr const char* commonID = "6B7E2180-3F4C-41A7-8C2D-5E19A07C33D1";
constexpr const char* definitionID = "6B7E2191-3F4C-41A7-8C2D-5E19A07C33D1";
constexpr const char* waveID = "6B7E2192-3F4C-41A7-8C2D-5E19A07C33D1";
constexpr const char* mpegID = "6B7E2194-3F4C-41A7-8C2D-5E19A07C33D1";

template<class T>
void Register(const char* name, const char* typeID)
{
    // The constructor adds the object to the registry.
    new ResourceType<T>(PString(name), UId(typeID), UId(commonID));
}

} // namespace

} // namespace Quon

void QuonGetPlugins()
{
    using namespace Quon;
    Register<SoundDefResource>("sound", definitionID);
    Register<SoundDefResource>("sound.txt", definitionID);
    Register<SoundResource>("wav", waveID);
    Register<SoundResource>("mp3", mpegID);
}
