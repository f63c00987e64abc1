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

/// A handle for a piece of music. It plays, fades and cross-fades one piece at a time, and two during a
/// cross-fade.
///
/// `name` is the name of a resource when there is a `db`, and the name of a file when `db` is null. A piece
/// requests a channel at once, ignores the limit of audible sounds, bypasses the data cache, and notifies
/// each MusicObserver but no SoundObserver. Task thread only. Without a running sound system all operations
/// do nothing and return false or 0.
///
/// The game owns the handle, and the piece ends with it. A copied handle controls the same piece: its gain
/// follows the handle that started it, and the piece ends with the first of the two handles that is
/// destroyed. If the only handle of a piece is overwritten by assignment, the piece continues without a
/// handle's gain until StopAll().
class HARMONET_API Music
{
public:
    /// Settings for starting a piece.
    struct Settings
    {
        bool loop = false; ///< A piece also loops if its resource says so.
        int fadeMs = 0; ///< Duration of its fade-in, and in CrossFade() of the old piece's fade-out.
        /// Start position in milliseconds of the file, as returned by GetPosition(). If it is beyond the end,
        /// the piece ends as soon as it has begun, as if it had played to its end; a loop wraps around.
        unsigned long positionMs = 0;
        /// The loop region in sample frames, as for Sound::SetSoundLoopRegion(): if it loops, the piece plays
        /// up to the end and continues at the start. 0 and 0 select that of the resource, or the whole file.
        int loopStart = 0;
        int loopEnd = 0;
    };

    Music();
    /// Observers stay with the handle to which they were added, and are notified of the pieces that it
    /// starts.
    Music(const Music& other);
    /// Controls the same piece as `other` from now on. The piece that it controlled before continues to play.
    Music& operator=(const Music& other);
    /// Calls Stop() and delivers its notifications, then calls the observers' OnMusicShutDown(). The handle
    /// cannot start pieces meanwhile.
    ~Music();

    /// Adding an observer twice has no further effect. Observers are not owned; an observer removes itself
    /// when it is destroyed. Null is ignored. Throws std::bad_alloc and adds nothing if memory runs out.
    void AddObserver(MusicObserver* observer);
    /// The observer receives no further calls. Null is ignored.
    void RemoveObserver(MusicObserver* observer);

    /// Ends the piece at once, and also one that is fading out.
    void Stop();
    /// Starts a piece. While another plays it returns false and changes nothing. It also returns false if the
    /// piece cannot be started; a piece that was fading out then ends too. A piece loops if `loop` is true or
    /// its resource says so.
    bool Play(const PString& name, bool loop);
    bool Play(const PString& name, const ResourceDatabase* db, bool loop);
    /// Same as Play(), with a fade-in of `ms` milliseconds; 0 or less means none. A piece that is fading out
    /// continues to fade, and the new one takes over its gain and effects unless it has some from a resource;
    /// a resource's gain applies to both at once. A virtual piece is replaced by the new one.
    bool FadeIn(const PString& name, int ms, bool loop);
    bool FadeIn(const PString& name, const ResourceDatabase* db, int ms, bool loop);
    /// The same with all settings.
    bool Play(const PString& name, const ResourceDatabase* db, const Settings& settings);
    /// Fades the piece out over `ms` milliseconds and ends it. False if there is no piece, or if it was not
    /// audible; it has then ended at once.
    bool FadeOut(int ms);
    /// Fades out the current piece, if any, and fades in the new one. A fade that is already running is cut
    /// off. Do not cross-fade from a resource to a plain file name: the name is looked up with the owner of
    /// the resource and not found, and both pieces end.
    bool CrossFade(const PString& name, int ms, bool loop);
    bool CrossFade(const PString& name, const ResourceDatabase* db, int ms, bool loop);
    bool CrossFade(const PString& name, const ResourceDatabase* db, const Settings& settings);

    /// Pauses the current piece, a piece that is fading out, and all pieces played with this handle until
    /// Resume(). Time stops for a paused piece, and it resumes at the same sample with a short ramp. A pause
    /// begins and ends in the next full update. In a pause, Play() prepares a piece, and FadeOut() and
    /// CrossFade() end the old one at once. See also Sound::PauseSound() and SoundSystem::PauseAll().
    void Pause() { SetPaused(true); }
    void Resume() { SetPaused(false); }
    bool IsPaused() const { return paused; }
    /// Linear, clamped to 0.0..1.0; NaN is ignored. During a cross-fade the piece that fades out keeps its
    /// gain.
    void SetGain(float newGain);
    float GetGain() const { return gain; }
    /// Gain of the high frequencies of all pieces played with this handle, including one that fades out: see
    /// Sound::SetSoundLowPass().
    void SetLowPass(float gainHF);
    float GetLowPass() const { return lowPass; }
    /// Milliseconds left to play; unknownLength for a looping piece.
    unsigned long GetRemainLength() const;
    /// The position of the piece in milliseconds from the start of its file; 0 without a piece. In a
    /// cross-fade it is that of the new piece.
    unsigned long GetPosition() const;
    /// Moves the piece to a position, exact to the sample frame, with short ramps to avoid clicks. A position
    /// beyond the end of a loop region wraps around. A piece that is fading out, a running fade-in and a
    /// pause are not affected. Returns false and changes nothing without a piece, for one that only fades
    /// out, and for a position at or beyond the end of the file. Also returns false if there is no channel
    /// for the piece any more and it cannot continue as a virtual voice; it has ended then.
    bool SetPosition(unsigned long ms);
    /// Returns a snapshot for tools; its id is 0 if there is no piece.
    SoundState GetState() const;

private:
    friend class MusicNotices;
    friend class SndBase;

    SndBase* FindLive() const;
    /// Throws std::bad_alloc if memory runs out.
    bool StartPiece(SndBase& instance, bool isNew, const PString& name, const ResourceDatabase* db,
        const Settings& settings);
    static void GiveWay(const SndBase& instance);
    void SetPaused(bool on);
    bool StartFile(SndBase& instance, bool isNew, const PString& name, const Settings& settings);
    bool StartResource(SndBase& instance, bool isNew, const PString& name, const ResourceDatabase& db,
        const Settings& settings);
    void Adopt(SndBase& instance, bool isNew);
    bool StartOrGiveUp(SndBase& instance);
    /// Deletes the instance and its fading channel. Returns false.
    bool GiveUp(SndBase& instance);

    int soundID = 0;
    float gain = 1.0F;
    float lowPass = 1.0F;
    bool paused = false;
    bool closing = false;
    std::unique_ptr<MusicNotices> notices; ///< Null until there is an observer.
};

} // namespace Quon
