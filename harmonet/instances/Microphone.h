#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/FXRecords.h"
#include "harmonet/engine/Particle.h"

namespace Quon
{

/// The listener: a node of the scene graph that can hang below the camera or a character. At most one
/// microphone is active at a time; without one no positional sound is heard. The active one carries its
/// position and orientation to the driver, and the rolloff factor and the acoustics of the room.
///
/// A position or orientation that is not finite does not go to the driver, which goes on with the last one.
///
/// Belongs to the game; may outlive the sound system and may be destroyed at any time. Task thread only.
class HARMONET_API Microphone : public Particle
{
public:
    /// Building a microphone does not activate it.
    Microphone();
    /// Copy the node and all fields, `active` included; but the copy is not the one that the sound system
    /// listens through, whatever IsActive() says of it.
    Microphone(const Microphone& other) = default;
    Microphone& operator=(const Microphone& other) = default;
    /// The sound system goes on without a listener if this was the active one.
    ~Microphone() override;

    /// The type of node.
    int GetID() const override;

    /// Makes this the listener; position, orientation and room go to the driver at once. Nothing without a
    /// running sound system.
    void Activate();
    bool IsActive() const { return active; }

    using Particle::SetOrientation;
    /// Looks along `front`, with `top` as a hint of what is up; neither needs unit length. Where the two are
    /// parallel, right is (1, 0, 0) and up (0, 1, 0). A front without a direction (zero, or not finite)
    /// changes nothing.
    void SetOrientation(const Vector3& front, const Vector3& top);
    void SetOrientation(const Quaternion& newOrientation) override;

    /// How fast sounds lose gain with distance. The driver keeps it, for all microphones; 1.0 without one.
    void SetRolloffFactor(float factor);
    float GetRolloffFactor() const;

    /// The room: a record, its quality, and a number that the driver gets unread. An active microphone passes
    /// it on at once and returns the driver's answer; any other keeps it until it is activated and returns
    /// true. False without a running sound system, and nothing is stored.
    bool SetFXEnvReverb(const FXEnvReverb* reverb, long quality, unsigned int argument);
    /// No room any more. The driver hears of it if this microphone is active.
    void ResetFXEnvReverb(unsigned int argument);
    /// Fills in the room that was asked for; false when there is none, or the driver has refused it.
    bool GetFXEnvReverb(FXEnvReverb* reverb);

private:
    friend class SndKernel;

    void SetActive(bool on);
    void SndUpdate();
    Vector3 GetGlobalPosition();
    void TurnBoundingSphere(const Quaternion& newOrientation);
    void ResetGlobalBoundingCenter() const override;

    bool active : 1;
    mutable bool changed : 1;
    bool hasFXEnvReverb : 1;
    unsigned int envReverbArg = 0;
    long envReverbQuality = 0;
    FXEnvReverb envReverb{};
};

} // namespace Quon
