#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/instances/Snd3D.h"

namespace Quon
{

class CandidateList;

/// The number of additional sources of a line, and their minimum angle in degrees.
struct SourceLimits
{
    unsigned int numAddSounds; ///< Sources in addition to the first.
    float minAngle; ///< Degrees.
};

/// Limits the numbers requested for a line: at most seven more sources, fewer than fit at that angle into a
/// full turn, and none for an angle below 10 degrees. The sign of the angle is ignored, it is taken modulo
/// 180, and it is reduced slightly. NaN counts as 0.
HARMONET_API SourceLimits LimitSources(unsigned int numAddSounds, float minAngle);

/// A sound that is emitted along a line in the world, such as a river or a road. It plays one sound through
/// up to eight ordinary positional sounds, its sources. Each time the listener moves, the first source moves
/// to the nearest point of the line at full gain, and the others to further points at half gain if these lie
/// in clearly different directions. Distance, channels and emulation are handled per source.
///
/// This object is the head: it holds the line and the ids of its sources, represents the whole line to game
/// code and observers, and is never played itself. The line is in world coordinates and does not move; the
/// head's own node has no effect. Unused sources are paused. All sources are paused until the listener first
/// moves.
///
/// `Sound` creates it, and the kernel owns it like any instance. Its sources end with it; a source that ends
/// on its own is detected at the next access. Task thread only.
class HARMONET_API SndPolyline : public Snd3D
{
public:
    /// One straight segment of the line.
    struct Segment
    {
        Vector3 start; ///< In the world.
        Vector3 direction; ///< Along the segment, of length 1.
        float length; ///< World units, at least `shortest`.
    };

    /// A position for a source.
    struct SoundPoint
    {
        Segment* segment; ///< The segment that contains it.
        Vector3 position; ///< In the world.
        float distance; ///< From the listener.
    };

    /// World units; a shorter length counts as zero.
    static constexpr float shortest = 1.1920929e-07F;

    /// Constructs a head without sources and line.
    SndPolyline();
    /// Constructs a new instance of the same sound, without sources and line.
    explicit SndPolyline(Snd3D& model);
    SndPolyline(const SndPolyline&) = delete;
    SndPolyline& operator=(const SndPolyline&) = delete;
    /// Ends its sources without notifying observers, then itself.
    ~SndPolyline() override;

    /// Sets up line and sources; always true. `ids`, a block from Alloc with the ids of positional sounds,
    /// becomes owned by this object, unless it throws because memory runs out. `minAngle` is the minimum
    /// angle in degrees between two sources, seen from the listener. The distances must have been set.
    ///
    /// Points that are not finite, too far away to measure, or equal to the point before are ignored. A
    /// single position is a valid line; a line without positions is never audible. Neither is one whose
    /// distances leave nothing in reach; but 0 and 0 without a cutout count as unset and become 10 and 500.
    bool Init(const Vector3* points, int numPoints, unsigned int* ids, int numIds, float minAngle);

    /// Computes the point of a segment that is nearest to the listener and returns its distance. `along` is
    /// its position along the segment. For a segment out of reach the result exceeds the reach, and nothing
    /// is written.
    float CalcClosestPoint(Segment* segment, const Vector3& listener, Vector3& closest, float& along);
    /// Compares two SoundPoint by distance: -1, 0 or 1, ascending.
    static int CompDist(const void* left, const void* right);
    /// Places the sources for this listener. Called by SndUpdate().
    void DistribSounds(const Vector3& listener);
    /// Moves the sources if the listener has moved. False when no source is left.
    bool SndUpdate(float seconds, const Vector3& listener, bool listenerMoved) override;

    /// Removes a source from the ids; later ones move up. An index out of range is ignored.
    void RemoveSnd(int index);
    /// The current number of sources, and the id of one.
    int GetNumSounds() const { return static_cast<int>(soundIDs.size()); }
    unsigned int GetSourceID(int index) const { return soundIDs[static_cast<std::size_t>(index)]; }
    /// Stores at most `maxPlaces` positions of sources that are not paused, the nearest first, and returns
    /// their number.
    int GetPlaces(Vector3* places, int maxPlaces) const;
    /// Adds the sources' position and state to the head's own state.
    void AddSourcesTo(SoundState& state) const;
    /// Whether a notification of one of the sources is running.
    bool IsSourceInNotification() const;

    /// Takes ownership of the effect block that the sources were created with.
    void AdoptSourceFX(const SndFXList& newList) { sourceFX = newList; }
    /// Gives the sources the head's current effects.
    void ShareFX();

    /// These go to the sources and the head, and do nothing without a kernel.
    void SetMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout) override;
    /// The level of the loudest source, or of the head if no source is placed.
    float CalcLevel(const Vector3* listener) const override;
    /// Sets the gain of the whole line: the first source gets it, the others half of it.
    virtual void SetGain(float newGain);
    void SetPaused(bool on);
    void SetLowPass(float gainHF);
    void SetPriority(int newPriority) override;
    void SetDelay(int ms) override;
    /// False if any source refuses.
    bool SetFrequency(unsigned long hz) override;
    /// Applies to the sources alone.
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

    /// Ordered: the first source has full gain and is nearest to the listener.
    EngineVector<unsigned int> soundIDs;
    EngineVector<Segment> segments;
    float cosMinAngle = 1.0F;
    int numActive = 0; ///< Number of placed sources; can exceed the number of remaining ones.
    EngineVector<SoundPoint> activePoints; ///< In the order of the sources. Empty for a single source.
    float pointSpacing = 0.0F; ///< Minimum distance of candidates along the line.
    int maxPoints = 0; ///< Maximum number of candidates.
    float totalLength = 0.0F;
    float range = 0.0F; ///< Distance from the line at which it is audible.
    Vector3 boundsMin; ///< Box around the line.
    Vector3 boundsMax;
    Vector3 listenerMin; ///< Box of half size `range` around the listener.
    Vector3 listenerMax;
    /// The block shared by the effect lists of the sources. They must not share the head's own block, which
    /// is reallocated whenever an effect is added to it.
    SndFXList sourceFX;
};

} // namespace Quon
