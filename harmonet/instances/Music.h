#pragma once

#include "harmonet/Export.h"
#include "harmonet/kernel/SoundState.h"

#include <memory>

namespace Quon
{

class MusicNotices;
class MusicObserver;
class PString;
class ResourceDatabase;
class SndBase;

/// A handle for a piece of music: plays, fades and cross-fades one piece at a time, two while they
/// cross-fade.
///
/// `name` is the name of a resource when there is a `db`, and the name of a file when `db` is null. A piece
/// asks for a channel at once, goes past the limit of audible sounds and past the data cache, and no
/// SoundObserver hears of it, but a MusicObserver does. Task thread only; works without a running sound
/// system, where it does nothing and returns false or 0.
///
/// The game owns the handle; the piece ends with it. A handle that is copied steers the same piece, whose
/// gain follows the handle that started it and which ends with the first of the two. A piece whose only
/// handle is assigned another one plays on, without a gain of a handle, until StopAll().
class HARMONET_API Music
{
public:
    /// How a piece is to be started.
    struct Settings
    {
        bool loop = false; ///< Adds to what the resource says.
        int fadeMs = 0; ///< Over which it fades in, and with CrossFade() the old piece out.
        /// Where it begins: milliseconds into the file, as GetPosition() gives them. Beyond its end the piece
        /// ends as soon as it has begun, as one that has run out; a loop goes round.
        unsigned long positionMs = 0;
        /// The loop region in sample frames, as for Sound::SetSoundLoopRegion(): if it loops, the piece plays
        /// up to the end and goes on from the start. 0 and 0: that of the resource, or the whole file.
        int loopStart = 0;
        int loopEnd = 0;
    };

    Music();
    /// The observers stay with the handle to which they were added, and hear of the pieces that it starts.
    Music(const Music& other);
    /// Steers the same piece as `other` from now on; the piece that it steered before plays on.
    Music& operator=(const Music& other);
    /// As Stop(), with what there is to tell of that; then tells the observers OnMusicShutDown(). Nothing can
    /// be started with the handle meanwhile.
    ~Music();

    /// An observer is in the list once, however often it is added. The list does not own it; an observer that
    /// is destroyed leaves by itself. Null does nothing. Throws std::bad_alloc, and adds nobody.
    void AddObserver(MusicObserver* observer);
    /// From here on the observer gets no call. Null does nothing.
    void RemoveObserver(MusicObserver* observer);

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
    /// The same, with all that can be asked for.
    bool Play(const PString& name, const ResourceDatabase* db, const Settings& settings);
    /// The piece falls to silence over `ms` milliseconds and ends. False when there is no piece, or when it
    /// was not heard, and it has then ended at once.
    bool FadeOut(int ms);
    /// FadeOut() of the piece that plays, if any, and FadeIn() of the new one. A fade that runs already is
    /// cut off. Do not cross-fade from a resource to the plain name of a file: the name is looked up with the
    /// owner of the resource and not found, and both pieces end.
    bool CrossFade(const PString& name, int ms, bool loop);
    bool CrossFade(const PString& name, const ResourceDatabase* db, int ms, bool loop);
    bool CrossFade(const PString& name, const ResourceDatabase* db, const Settings& settings);

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
    /// Gain of the high frequencies of whatever is played with this handle, and of what fades out beside it:
    /// see Sound::SetSoundLowPass().
    void SetLowPass(float gainHF);
    float GetLowPass() const { return lowPass; }
    /// Milliseconds still to come; unknownLength for a looping piece.
    unsigned long GetRemainLength() const;
    /// Where the piece is, in milliseconds from the start of its file; 0 without one. In a cross-fade that is
    /// the piece that comes in.
    unsigned long GetPosition() const;
    /// Takes the piece there, exactly to the sample frame, by short ramps instead of a click. A loop whose
    /// region ends before that place goes round it. What fades out beside the piece, a fade-in that runs and
    /// a pause are not touched. False, and nothing changes, without a piece, for one that only fades out, and
    /// for a position that is not before the end of the file. False also if the output has no channel for the
    /// piece any more and it cannot go on as a virtual voice; it has then ended.
    bool SetPosition(unsigned long ms);
    /// A snapshot for tools; the id in it is 0 if there is no piece.
    SoundState GetState() const;

private:
    friend class MusicNotices;
    friend class SndBase;

    SndBase* FindLive() const;
    /// Throws when there is no memory.
    bool StartPiece(SndBase& instance, bool isNew, const PString& name, const ResourceDatabase* db,
        const Settings& settings);
    static void GiveWay(const SndBase& instance);
    void SetPaused(bool on);
    bool StartFile(SndBase& instance, bool isNew, const PString& name, const Settings& settings);
    bool StartResource(SndBase& instance, bool isNew, const PString& name, const ResourceDatabase& db,
        const Settings& settings);
    void Adopt(SndBase& instance, bool isNew);
    bool StartOrGiveUp(SndBase& instance);
    /// Deletes the instance, with what still fades out in it. False.
    bool GiveUp(SndBase& instance);

    int soundID = 0;
    float gain = 1.0F;
    float lowPass = 1.0F;
    bool paused = false;
    bool closing = false;
    std::unique_ptr<MusicNotices> notices; ///< Null until there is an observer.
};

} // namespace Quon
