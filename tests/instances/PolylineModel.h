#pragma once

#include "harmonet/engine/Vector.h"

#include <vector>

namespace Quon
{

/// A slow, plain model of a sound along a line: where its sources stand for a listener. It keeps to the rules
/// as they are written down, builds whole lists, sorts them, and leaves out whatever only saves time.
class PolylineModel
{
public:
    struct Settings
    {
        std::vector<Vector3> points;
        unsigned int numAddSounds = 0;
        float minAngle = 45.0F;
        float minDistance = 10.0F;
        float maxDistance = 100.0F;
        bool cutout = true;
    };

    explicit PolylineModel(const Settings& newSettings);

    /// Takes the listener there; the places of the sources by rank, without those that are not placed.
    const std::vector<Vector3>& Move(const Vector3& listener);

    int GetNumSources() const { return numSources; }

private:
    struct Piece
    {
        Vector3 start;
        Vector3 direction;
        float length;
    };
    struct Place
    {
        Vector3 position;
        float distance;
    };
    struct Foot
    {
        Place place;
        float along;
    };

    void LimitSources();
    void BuildPieces();
    bool IsBoxInReach(const Vector3& listener) const;
    static Foot FindFoot(const Piece& piece, const Vector3& listener);
    std::vector<Place> ListCandidates(const Vector3& listener) const;
    std::vector<Vector3> Choose(std::vector<Place> candidates, const Vector3& listener) const;
    void MoveSingle(const Vector3& listener);

    Settings settings;
    int numSources = 0;
    float angle = 0.0F;
    float range = 0.0F;
    std::vector<Piece> pieces;
    std::vector<Vector3> places;
};

} // namespace Quon
