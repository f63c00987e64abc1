#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/SndFXList.h"
#include "harmonet/definitions/SoundVariation.h"
#include "harmonet/engine/PString.h"
#include "harmonet/engine/Resource.h"
#include "harmonet/engine/Vector.h"

namespace Quon
{

class Music;
class Sound;

/// The audible range of a positional sound for which none has been set, in world units.
inline constexpr float defaultMinDistance = 10.0F;
inline constexpr float defaultMaxDistance = 500.0F;
/// The maximum of a factor on the Doppler effect.
inline constexpr float maxDopplerFactor = 10.0F;

/// A sound in the resource database: the settings for playing it and the name of its file. It does not play
/// the sound and holds no sound data.
///
/// This class represents a plain sound file with the default settings; SoundDefResource reads them from
/// a text file. The database owns it. To read the settings, add a reference, lock, read, unlock and release;
/// they are valid between lock and unlock. Cannot be copied.
class HARMONET_API SoundResource : public Resource
{
public:
    /// With the defaults of all settings, not loaded. A ResourceDatabase creates these objects.
    SoundResource(const PString& newName, const ResourceDatabase* database);
    SoundResource(const SoundResource&) = delete;
    SoundResource& operator=(const SoundResource&) = delete;
    ~SoundResource() override;

    using Resource::Load;
    /// Sets the defaults, and `path` as the name of the sound file, which is not opened. Always succeeds.
    Result Load(const ResourceDatabase* database, char* path) const override;
    /// Same as Load().
    Result LoadTxt(const ResourceDatabase* database, char* path) const override;

    /// Called for a sound or piece of music after it has been set up from this resource, which is locked. The
    /// defaults do nothing and return true; the result is ignored. A derived resource can change the new
    /// sound.
    virtual bool ApplySoundSettings(Sound* sound, int soundID) const;
    virtual bool ApplyMusicSettings(Music* music) const;

    /// The sound is not audible beyond its maximum distance. Default true.
    bool GetCutout() const { return cutout; }
    bool GetLooping() const { return looping; }
    /// The rate can change while the sound plays.
    bool GetChgFrequency() const { return chgFrequency; }
    /// The listener's effects do not apply.
    bool GetDisableMicFX() const { return disableMicFX; }
    /// Linear. Default 1.0.
    float GetGain() const { return gain; }
    /// Linear gain of the high frequencies. Default 1.0.
    float GetLowPass() const { return lowPass; }
    /// Factor on the sound's Doppler effect. Default 1.0.
    float GetDoppler() const { return doppler; }
    /// Degrees. Default 180.0 for both: no cone.
    float GetInnerConeAngle() const { return innerConeAngle; }
    float GetOuterConeAngle() const { return outerConeAngle; }
    /// Linear factor outside the outer cone. Default 1.0.
    float GetConeGain() const { return coneGain; }
    /// World units. Defaults 10.0 and 500.0.
    float GetMinDistance() const { return minDistance; }
    float GetMaxDistance() const { return maxDistance; }
    /// Name of the sound file below the folder of GetOwnerName().
    PString& GetFileName() const { return fileName; }
    /// Hz; 0, the default, selects the file's own rate.
    int GetFrequency() const { return frequency; }
    /// Milliseconds before the sound starts.
    int GetDelay() const { return delay; }
    const Vector3& GetPosition() const { return position; }
    /// Additional sources of a sound along a line.
    int GetNumAddSounds() const { return numAddSounds; }
    /// Degrees: the minimum angle between two of its sources, as seen from the listener. Default 45.0.
    float GetMinAngle() const { return minAngle; }
    /// The points of the line, owned by the resource; null and 0 for a sound that is not along a line.
    int GetNumPoints() const { return numPoints; }
    const Vector3* GetPolyline() const { return polyline; }
    /// The loop region of a looping sound, in sample frames; 0 and 0, the default, select the whole file, and
    /// an end of 0 that of the file.
    int GetLoopStart() const { return loopStart; }
    int GetLoopEnd() const { return loopEnd; }
    /// The effects; the resource owns the block.
    const SndFXList GetFXList() const { return fxList; }
    /// The variation between starts; none by default.
    const SoundVariation& GetVariation() const { return variation; }
    /// The maximum number of instances and the minimum interval of starts; no limits by default.
    const SoundLimits& GetLimits() const { return limits; }

protected:
    /// Sets the defaults of all settings except the file name and the effects. The points are dropped without
    /// being freed; the caller must free them.
    virtual void Init() const;
    /// Frees the points of the line.
    void FreePolyline() const;

    /// The settings; see the getters. Init() contains their defaults.
    mutable bool cutout : 1;
    mutable bool looping : 1;
    mutable bool chgFrequency : 1;
    mutable bool disableMicFX : 1;
    mutable float gain;
    mutable float innerConeAngle;
    mutable float outerConeAngle;
    mutable float coneGain;
    mutable float minDistance;
    mutable float maxDistance;
    mutable PString fileName;
    mutable int frequency;
    mutable int delay;
    mutable Vector3 position;
    mutable int numAddSounds;
    mutable float minAngle;
    mutable int numPoints;
    mutable Vector3* polyline;
    mutable SndFXList fxList;
    mutable SoundVariation variation;
    mutable SoundLimits limits;
    mutable int loopStart;
    mutable int loopEnd;
    mutable float lowPass;
    mutable float doppler;
};

} // namespace Quon
