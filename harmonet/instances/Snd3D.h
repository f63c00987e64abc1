#pragma once

#include "harmonet/engine/Particle.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/Motion.h"

namespace Quon
{

/// A sound effect with a place in the world: a node of the scene graph, which can hang below any other node
/// and follow it. The sound's position is the node's global position. Scene and driver share one coordinate
/// system, so nothing is converted.
///
/// The node tells of a move by going stale; nothing is computed then, and the next full update picks it up. A
/// position that is not finite counts as out of reach and does not go to the channel.
class HARMONET_API Snd3D : public Particle, public SndBase
{
public:
    using SndBase::operator new;
    using SndBase::operator delete;

    Snd3D();
    /// A new instance of the same sound that is not yet running, with the cone, distances and axis of `other`
    /// and a fresh node.
    Snd3D(const Snd3D& other);
    /// Copies the node's local data, and SndBase::operator=.
    Snd3D& operator=(const Snd3D& other);
    /// Ends the sound before the node leaves the scene.
    ~Snd3D() override;

    /// The axis of the cone unless BindAxisToDirection() says otherwise: the negative Z axis.
    static constexpr int defaultAxis = -3;

    /// The type of node.
    int GetID() const override;
    void ResetGlobalBoundingCenter() const override;
    /// The sound stays where it was heard last, and turned as it was, now in world coordinates.
    void OnParentDestroyed() override;

    /// Which axis of the node is the direction of the cone: 1, 2, 3 for X, Y, Z and -1, -2, -3 for their
    /// opposites; any other value counts as -3, the negative Z axis. Takes effect with the next update of the
    /// position.
    virtual void BindAxisToDirection(int newAxis);
    /// Full gain inside `inner`, `newConeGain` outside `outer`, both full angles in degrees. A channel hears
    /// of it at once, also of a cone that is not in use: one whose inner angle is 180.0 or more, or whose
    /// gain is 1.0 or more.
    virtual void SetCone(float inner, float outer, float newConeGain);
    /// Range of the attenuation in world units. With `newCutout` the sound is not audible beyond the maximum.
    virtual void SetMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout);

    void Play(SndFile* file) override;
    void CalcDistSqr(const Vector3& listener) override;
    bool SndUpdate(float seconds, const Vector3& listener, bool listenerMoved) override;
    /// Stores the nine words, also while the sound plays, and hands them to the channel; its answer is the
    /// result, true without a channel. False, and nothing is stored, without a kernel or when the driver
    /// lacks capEnvReverbSource.
    bool SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* properties) override;
    bool GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* properties) override;
    float CalcLevel(const Vector3* listener) const override;
    /// The node's velocity counts unless the sound is not movable. A sound along a line has none of it, since
    /// its sources jump.
    void UpdatePitch(SndChannel& channel, bool isNew) override;
    /// Works out the place in the world, so that the next CalcDistSqr() has it.
    void UpdatePlace();

    /// Moves the source and turns the cone to where the node now is. The direction follows only while the
    /// cone is in use, so that a plain source costs one call. Needs a channel.
    void UpdatePosition();
    void SetHasMoved(bool on);
    /// How much of the Doppler effect the sound has: a factor, clamped to 0.0 to 10.0; NaN changes nothing.
    void SetDoppler(float factor);
    float GetDoppler() const { return doppler; }
    bool GetCutout() const;
    float GetMinDistance() const { return minDistance; }
    float GetMaxDistance() const;
    /// Stores the settings without telling a channel: for a sound that is being set up.
    void InitCone(float inner, float outer, float newConeGain);
    void InitMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout);

    /// The library only keeps and exports this value.
    static void SetSilence(float value) { silenceValue = value; }
    static float silenceValue;

private:
    bool IsConeInUse() const { return innerConeAngle < 180.0F && coneGain < 1.0F; }
    Vector3 CalcDirection() const;

    float minDistance = 0.0F;
    float innerConeAngle = 0.0F;
    float outerConeAngle = 0.0F;
    float coneGain = 0.0F;
    int axis = defaultAxis;
    float doppler = 1.0F;
    float sentPitch = 1.0F; ///< To the channel.
    Motion motion; ///< While the Doppler effect is on.
};

} // namespace Quon
