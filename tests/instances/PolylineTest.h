#pragma once

#include "harmonet/instances/SndPolyline.h"
#include "tests/support/SoundTest.h"

namespace Quon
{

struct LineSettings
{
    std::vector<Vector3> points;
    unsigned int numAddSounds = 0;
    float minAngle = 45.0F;
    float minDistance = 10.0F;
    float maxDistance = 100.0F;
    bool cutout = true;
};

/// Sounds along lines, in the file "w", a second of sound.
class PolylineTest : public SoundTest
{
protected:
    PolylineTest();

    /// Makes a line with the distances of the settings, not started.
    int Make(const LineSettings& settings);
    /// Makes and starts it.
    int PlayLine(const LineSettings& settings, int flags = 0);
    /// An update with the listener at that place; counts as a move also if it is where it was.
    void Listen(const Vector3& place);
    std::vector<Vector3> Places(int id) const;

    SndPolyline& GetLine(int id) const;
    Snd3D& GetSource(int id, int rank) const;
    Ids SourceIds(int id) const;

    PString file;
};

/// A straight line along the X axis.
LineSettings StraightLine(float fromX, float toX, unsigned int numAddSounds = 0, float minAngle = 45.0F);

} // namespace Quon
