#pragma once

#include "harmonet/engine/Particle.h"
#include "harmonet/instances/SndBase.h"

#include <cstdint>

namespace Quon
{

/// A positional sound effect: a node of the scene graph, which can be attached to any other node and follow
/// it. The sound's position is the node's global position. Scene and driver share one coordinate system, so
/// nothing is converted.
///
/// A move only marks the node as stale; nothing is computed until the next full update handles it. A position
/// that is not finite counts as out of reach and is not sent to the channel.
class HARMONET_API Snd3D : public Particle, public SndBase
{
public:
    using SndBase::operator new;
    using SndBase::operator delete;

    Snd3D();
    /// Constructs a new instance of the same sound that has not started, with the cone, distances and axis of
    /// `other` and a new node.
    Snd3D(const Snd3D& other);
    /// Copies the node's local data and calls SndBase::operator=.
    Snd3D& operator=(const Snd3D& other);
    /// Ends the sound before the node is removed from the scene.
    ~Snd3D() override;

    /// The default axis of the cone: the negative Z axis.
    static constexpr int defaultAxis = -3;

    /// Returns the node type.
    int GetID() const override;
    void ResetGlobalBoundingCenter() const override;
    /// The sound keeps its last position and orientation, now in world coordinates.
    void OnParentDestroyed() override;

    /// Selects the node's axis that is the direction of the cone: 1, 2, 3 for X, Y, Z and -1, -2, -3 for
    /// their opposites; any other value means -3, the negative Z axis. Takes effect with the next update of
    /// the position.
    virtual void BindAxisToDirection(int newAxis);
    /// Full gain inside `inner`, `newConeGain` outside `outer`, both full angles in degrees. Sent to the
    /// channel at once, even if the cone is not in use: its inner angle is 180.0 or more, or its gain is 1.0
    /// or more.
    virtual void SetCone(float inner, float outer, float newConeGain);
    /// Range of the attenuation in world units. With `newCutout` the sound is not audible beyond the maximum.
    virtual void SetMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout);

    void Play(SndFile* file) override;
    void CalcDistSqr(const Vector3& listener) override;
    bool SndUpdate(float seconds, const Vector3& listener, bool listenerMoved) override;
    /// Stores the nine words, also while the sound plays, and sends them to the channel. Returns the
    /// channel's result, or true without a channel. Returns false and stores nothing without a kernel or if
    /// the driver lacks capEnvReverbSource.
    bool SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* properties) override;
    bool GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* properties) override;
    float CalcLevel(const Vector3* listener) const override;
    /// Uses the node's velocity unless the sound is not movable. A sound along a line has no Doppler effect,
    /// since its sources jump.
    void UpdatePitch(SndChannel& channel, bool isNew) override;
    /// Computes the position in the world for the next CalcDistSqr(). `row` is this sound's.
    void UpdatePlace(SoundRow row);

    /// Sends the node's position to the channel, and its direction if the cone is in use, so that a plain
    /// source costs one call. Needs a channel.
    void UpdatePosition();
    void SetHasMoved(bool on);
    /// Factor on the sound's Doppler effect, clamped to 0.0..10.0; NaN is ignored.
    void SetDoppler(float factor);
    float GetDoppler() const { return GetExtras().doppler; }
    bool GetCutout() const;
    float GetMinDistance() const { return minDistance; }
    float GetMaxDistance() const;
    /// Store the settings without sending them to a channel: for a sound that is being set up.
    void InitCone(float inner, float outer, float newConeGain);
    void InitMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout);

    /// The library only stores this value for its users.
    static void SetSilence(float value) { silenceValue = value; }
    static float silenceValue;

private:
    void CopyCone(const Snd3D& other);
    void SendDirection(SndChannel& channel) const;

    float minDistance = 0.0F;
};

} // namespace Quon
