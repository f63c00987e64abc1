#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/instances/Snd3D.h"

namespace Quon
{

class CandidateList;

/// How many sources a line has beside the first, and how many degrees they are to lie apart.
struct SourceLimits
{
    unsigned int numAddSounds; ///< Sources beside the first.
    float minAngle; ///< Degrees.
};

/// What becomes of the numbers that are asked of a line: at most seven more sources, fewer than there are of
/// that angle in a full turn, and none for an angle below 10 degrees. The sign of the angle does not matter,
/// it counts modulo 180, and a little is taken off. What is no number counts as 0.
HARMONET_API SourceLimits LimitSources(unsigned int numAddSounds, float minAngle);

/// A sound that comes from a whole length of the world: a river, a road. It plays one sound through up to
/// eight ordinary positional sounds, its sources. Each time the listener moves, the first source goes to the
/// nearest point of the line, at full gain, and the others to further points at half gain, as long as they
/// lie in clearly different directions. Distance, channels and emulation are those of the sources.
///
/// This object is the head: it holds the line and the ids of its sources, stands for the whole towards game
/// code and observers, and is never heard itself. The line is in world coordinates and does not move; the
/// head's own node plays no role. A source that is not needed is in pause. Before the listener's first move
/// all are.
///
/// `Sound` makes it, and the kernel owns it like any instance. It owns its sources in so far as they go with
/// it; one that ends by itself is noticed at the next look. Task thread only.
class HARMONET_API SndPolyline : public Snd3D
{
public:
    /// One straight piece of the line.
    struct Segment
    {
        Vector3 start; ///< In the world.
        Vector3 direction; ///< Along the piece, of length 1.
        float length; ///< World units, at least `shortest`.
    };

    /// A place for a source.
    struct SoundPoint
    {
        Segment* segment; ///< The piece on which it lies.
        Vector3 position; ///< In the world.
        float distance; ///< From the listener.
    };

    /// World units: what is shorter counts as no length.
    static constexpr float shortest = 1.1920929e-07F;

    /// Without sources and line.
    SndPolyline();
    /// A new instance of the same sound, without sources and line.
    explicit SndPolyline(Snd3D& model);
    SndPolyline(const SndPolyline&) = delete;
    SndPolyline& operator=(const SndPolyline&) = delete;
    /// Ends its sources without a word, then itself.
    ~SndPolyline() override;

    /// Sets up line and sources; always true. `ids`, a block from Alloc with the ids of positional sounds,
    /// is taken over, unless there is no memory, which throws. `minAngle` in degrees is the least angle
    /// between two sources, as seen from the listener. The distances must have been set.
    ///
    /// Points that are not finite, or too far away to measure, are passed over, and so are those that
    /// coincide with the one before. One place is a line too; without any the line is never heard. The same
    /// goes for distances that leave nothing in reach; but 0 and 0 without a cutout are none set, and count
    /// as 10 and 500.
    bool Init(const Vector3* points, int numPoints, unsigned int* ids, int numIds, float minAngle);

    /// The point of a piece that is nearest to the listener; returns its distance. `along` is its place along
    /// the piece. For a piece out of reach the result is above the reach, and nothing is written.
    float CalcClosestPoint(Segment* segment, const Vector3& listener, Vector3& closest, float& along);
    /// Compares two SoundPoint by distance: -1, 0 or 1, ascending.
    static int CompDist(const void* left, const void* right);
    /// Puts the sources where that listener is to hear them. SndUpdate() calls it.
    void DistribSounds(const Vector3& listener);
    /// Follows the listener if it has moved. False when no source is left.
    bool SndUpdate(float seconds, const Vector3& listener, bool listenerMoved) override;

    /// Forgets a source; those behind it move up. Nothing for a rank that there is not.
    void RemoveSnd(int index);
    /// The sources that there are now, and the id of one.
    int GetNumSounds() const { return static_cast<int>(soundIDs.size()); }
    unsigned int GetSourceID(int index) const { return soundIDs[static_cast<std::size_t>(index)]; }
    /// Stores the places of the sources that are not in pause, the nearest first, and at most `most`.
    /// Returns how many it stored.
    int GetPlaces(Vector3* places, int most) const;
    /// Adds to the head's own state where and how its sources are heard.
    void AddSourcesTo(SoundState& state) const;
    /// A notification of one of the sources is running.
    bool IsSourceBeingTold() const;

    /// Takes over the block of effects that the sources have been made with.
    void AdoptSourceFX(const SndFXList& newList) { sourceFX = newList; }
    /// Gives the sources the effects of the head, as they now are.
    void ShareFX();

    /// These go to the sources and the head, and do nothing without a kernel.
    void SetMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout) override;
    /// That of the loudest source, or before there is one that of the head.
    float CalcLevel(const Vector3* listener) const override;
    /// For the whole line: the first source gets the gain, the others half of it.
    virtual void SetGain(float newGain);
    void SetPaused(bool on);
    void SetLowPass(float gainHF);
    void SetPriority(int newPriority) override;
    void SetDelay(int ms) override;
    /// False if any of them refuses.
    bool SetFrequency(unsigned long hz) override;
    /// To the sources alone.
    void BindAxisToDirection(int newAxis) override;

private:
    void InitSegments(const Vector3* points, int numPoints);
    void AddSegment(const Vector3& start, const Vector3& direction, float length);
    void IncludeInBounds(const Vector3& point);
    void CalcReach();
    bool IsInReach() const;
    bool CanReach(const Segment& segment) const;

    void DistribOne(const Vector3& listener);
    void DistribSeveral(const Vector3& listener);
    void CollectCandidates(const Vector3& listener, CandidateList& candidates);
    int SelectPoints(const Vector3& listener, CandidateList& candidates);
    bool IsApart(const SoundPoint& candidate, int placed, const Vector3& listener) const;
    void PauseFrom(int first);
    void PlaceSources(int placed);

    Snd3D* FindSource(int index) const;
    template<class Visit>
    void ForEachSource(int first, int last, Visit visit);
    template<class Visit>
    void ForEachSource(Visit visit)
    {
        ForEachSource(0, GetNumSounds(), visit);
    }

    /// By rank: the first is the one of full gain, which stands nearest to the listener.
    EngineVector<unsigned int> soundIDs;
    EngineVector<Segment> segments;
    float cosMinAngle = 1.0F;
    int numActive = 0; ///< How many sources are placed; can exceed what is left of them.
    EngineVector<SoundPoint> activePoints; ///< In the order of the sources. Empty for a single source.
    float pointSpacing = 0.0F; ///< Least distance of candidates along the line.
    int maxPoints = 0; ///< Most candidates.
    float totalLength = 0.0F;
    float range = 0.0F; ///< How far from the line it can be heard.
    Vector3 boundsMin; ///< Box around the line.
    Vector3 boundsMax;
    Vector3 listenerMin; ///< Box of half size `range` around the listener.
    Vector3 listenerMax;
    /// The block under the effect lists of the sources. None of them points at the head's own block, which
    /// moves whenever an effect is added to it.
    SndFXList sourceFX;
};

} // namespace Quon
