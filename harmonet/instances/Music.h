#pragma once

#include "harmonet/Export.h"
#include "harmonet/kernel/SoundState.h"

namespace Quon
{

class PString;
class ResourceDatabase;
class SndBase;

/// A handle for a piece of music: plays, fades and cross-fades one piece at a time, two while they
/// cross-fade.
///
/// `name` is the name of a resource when there is a `db`, and the name of a file when `db` is null. A piece
/// asks for a channel at once, goes past the limit of audible sounds and past the data cache, and no observer
/// hears of it. Task thread only; works without a running sound system, where it does nothing and returns
/// false or 0.
///
/// The game owns the handle; the piece ends with it. A handle that is copied steers the same piece, whose
/// gain follows the handle that started it and which ends with the first of the two. A piece whose only
/// handle is assigned another one plays on, without a gain of a handle, until StopAll().
class HARMONET_API Music
{
public:
    Music() = default;
    Music(const Music&) = default;
    Music& operator=(const Music& other);
    /// As Stop().
    ~Music();

    /// Ends the piece at once, and one that is fading out too.
    void Stop();
    /// Starts a piece. False, and nothing changes, while one plays. False also when the piece cannot be had;
    /// one that was fading out then ends too. `loop` adds to what the resource says.
    bool Play(const PString& name, bool loop);
    bool Play(const PString& name, const ResourceDatabase* db, bool loop);
    /// The same, rising from silence over `ms` milliseconds; 0 or less is a plain start. A piece that is
    /// fading out goes on fading beside it, and the new one takes over its own gain and effects as far as it
    /// has none of a resource; a resource's gain is heard on both at once. One that runs unheard is given up
    /// for the new one.
    bool FadeIn(const PString& name, int ms, bool loop);
    bool FadeIn(const PString& name, const ResourceDatabase* db, int ms, bool loop);
    /// The piece falls to silence over `ms` milliseconds and ends. False when there is no piece, or when it
    /// was not heard, and it has then ended at once.
    bool FadeOut(int ms);
    /// FadeOut() of the piece that plays, if any, and FadeIn() of the new one. A fade that runs already is
    /// cut off. Do not cross-fade from a resource to the plain name of a file: the name is looked up with the
    /// owner of the resource and not found, and both pieces end.
    bool CrossFade(const PString& name, int ms, bool loop);
    bool CrossFade(const PString& name, const ResourceDatabase* db, int ms, bool loop);

    /// Pauses the piece, what fades out beside it, and whatever is played with this handle until Resume():
    /// time stands still for it, and it comes back at the same sample with a short ramp. Begins and ends in
    /// the next full update. Paused, Play() makes a piece ready, and FadeOut() and CrossFade() end the old
    /// one at once. See also Sound::PauseSound() and SoundSystem::PauseAll().
    void Pause() { SetPaused(true); }
    void Resume() { SetPaused(false); }
    bool IsPaused() const { return paused; }
    /// Linear, clamped to 0.0 to 1.0; NaN changes nothing. During a cross-fade the piece that fades out keeps
    /// the gain it had.
    void SetGain(float newGain);
    float GetGain() const { return gain; }
    /// Milliseconds still to come; unknownLength for a looping piece.
    unsigned long GetRemainLength() const;
    /// A snapshot for tools; the id in it is 0 if there is no piece.
    SoundState GetState() const;

private:
    SndBase* FindLive() const;
    /// Throws when there is no memory.
    bool StartPiece(
        SndBase& instance, bool isNew, const PString& name, const ResourceDatabase* db, int ms, bool loop);
    void SetPaused(bool on);
    bool StartFile(SndBase& instance, bool isNew, const PString& name);
    bool StartResource(SndBase& instance, bool isNew, const PString& name, const ResourceDatabase& db);
    void Adopt(SndBase& instance, bool isNew);
    bool StartOrGiveUp(SndBase& instance);
    /// Deletes the instance, with what still fades out in it. False.
    bool GiveUp(SndBase& instance);

    int soundID = 0;
    float gain = 1.0F;
    bool paused = false;
};

} // namespace Quon
