#include "harmonet/definitions/SoundResource.h"

#include "harmonet/engine/Alloc.h"

namespace Quon
{

SoundResource::SoundResource(const PString& newName, const ResourceDatabase* database)
    : Resource(newName, database)
{
    SoundResource::Init();
}

SoundResource::~SoundResource()
{
    fxList.Clear();
    FreePolyline();
}

Result SoundResource::Load(const ResourceDatabase*, char* path) const
{
    FreePolyline();
    Init();
    fileName = PString(path);
    return Result(Loaded);
}

Result SoundResource::LoadTxt(const ResourceDatabase* database, char* path) const
{
    return Load(database, path);
}

bool SoundResource::ApplySoundSettings(Sound*, int) const
{
    return true;
}

bool SoundResource::ApplyMusicSettings(Music*) const
{
    return true;
}

void SoundResource::Init() const
{
    cutout = true;
    looping = false;
    chgFrequency = false;
    disableMicFX = false;
    gain = 1.0F;
    lowPass = 1.0F;
    doppler = 1.0F;
    innerConeAngle = 180.0F;
    outerConeAngle = 180.0F;
    coneGain = 1.0F;
    minDistance = defaultMinDistance;
    maxDistance = defaultMaxDistance;
    frequency = 0;
    delay = 0;
    position = Vector3();
    numAddSounds = 0;
    minAngle = 45.0F;
    numPoints = 0;
    polyline = nullptr;
    variation = SoundVariation();
    limits = SoundLimits();
    loopStart = 0;
    loopEnd = 0;
}

void SoundResource::FreePolyline() const
{
    Alloc::Delete(polyline);
    polyline = nullptr;
    numPoints = 0;
}

} // namespace Quon
