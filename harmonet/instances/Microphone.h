#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/FXRecords.h"
#include "harmonet/engine/Particle.h"

namespace Quon
{

/// The listener: a node of the scene graph, which can be attached to the camera or a character. At most one
/// microphone is active at a time; without one no positional sound is audible. The active microphone sends
/// its position and orientation, the rolloff factor and the room's acoustics to the driver.
///
/// A position or orientation that is not finite is not sent to the driver, which keeps the last one.
///
/// Owned by the game. It may outlive the sound system and may be destroyed at any time. Task thread only.
class HARMONET_API Microphone : public Particle
{
public:
    /// Constructs an inactive microphone.
    Microphone();
    /// Copies the node and all fields, `active` included. Copying never makes the copy the sound system's
    /// listener, whatever its IsActive() returns.
    Microphone(const Microphone& other) = default;
    Microphone& operator=(const Microphone& other) = default;
    /// If this microphone is active, the sound system continues without a listener.
    ~Microphone() override;

    /// Returns the node type.
    int GetID() const override;

    /// Makes this microphone the listener and sends its position, orientation and room to the driver at once.
    /// Does nothing without a running sound system.
    void Activate();
    bool IsActive() const { return active; }

    using Particle::SetOrientation;
    /// Turns to `front`, with `top` as an up hint; neither needs unit length. If the two are parallel, right
    /// is (1, 0, 0) and up is (0, 1, 0). A front without a direction (zero or not finite) is ignored.
    void SetOrientation(const Vector3& front, const Vector3& top);
    void SetOrientation(const Quaternion& newOrientation) override;

    /// How fast gain falls with distance. The driver stores it for all microphones; the getter returns 1.0
    /// without a driver.
    void SetRolloffFactor(float factor);
    float GetRolloffFactor() const;

    /// Sets the room: a record, its quality, and a number that is passed to the driver unchanged. An active
    /// microphone sends the room to the driver at once and returns the driver's result; an inactive one
    /// stores it until it is activated and returns true. Without a running sound system it returns false and
    /// stores nothing.
    bool SetFXEnvReverb(const FXEnvReverb* reverb, long quality, unsigned int argument);
    /// Removes the room. The driver is notified if this microphone is active.
    void ResetFXEnvReverb(unsigned int argument);
    /// Fills in the requested room. False if there is none or the driver has refused it.
    bool GetFXEnvReverb(FXEnvReverb* reverb);

private:
    friend class SndKernel;

    void SetActive(bool on);
    void SndUpdate();
    Vector3 GetGlobalPosition();
    void ResetGlobalBoundingCenter() const override;

    bool active : 1;
    mutable bool changed : 1;
    bool hasFXEnvReverb : 1;
    unsigned int envReverbArg = 0;
    long envReverbQuality = 0;
    FXEnvReverb envReverb{};
};

} // namespace Quon
