#include "tests/instances/PolylineTest.h"

namespace Quon
{

PolylineTest::PolylineTest()
    : file(WriteWave("w", {1000}))
{
}

int PolylineTest::Make(const LineSettings& settings)
{
    const int id =
        group->New3DSound(settings.points.data(), static_cast<unsigned int>(settings.points.size()), file,
            nullptr, settings.numAddSounds, settings.minAngle);
    EXPECT_GT(id, 0);
    group->SetSoundMinMaxDistance(id, settings.minDistance, settings.maxDistance, settings.cutout);
    return id;
}

int PolylineTest::PlayLine(const LineSettings& settings, int flags)
{
    const int id = Make(settings);
    EXPECT_TRUE(group->StartSound(id, flags));
    return id;
}

void PolylineTest::Listen(const Vector3& place)
{
    microphone->SetPosition(place);
    Step(40);
}

std::vector<Vector3> PolylineTest::Places(int id) const
{
    Vector3 places[8];
    const int count = group->GetSoundPlaces(id, places, 8);
    return {places, places + count};
}

SndPolyline& PolylineTest::GetLine(int id) const
{
    return dynamic_cast<SndPolyline&>(*Find(id));
}

Snd3D& PolylineTest::GetSource(int id, int rank) const
{
    return dynamic_cast<Snd3D&>(*Find(static_cast<int>(GetLine(id).GetSourceID(rank))));
}

Ids PolylineTest::SourceIds(int id) const
{
    Ids ids;
    for (int i = 0; i < GetLine(id).GetNumSounds(); ++i) {
        ids.push_back(static_cast<int>(GetLine(id).GetSourceID(i)));
    }
    return ids;
}

LineSettings StraightLine(float fromX, float toX, unsigned int numAddSounds, float minAngle)
{
    LineSettings settings;
    settings.points = {{fromX, 0.0F, 0.0F}, {toX, 0.0F, 0.0F}};
    settings.numAddSounds = numAddSounds;
    settings.minAngle = minAngle;
    return settings;
}

} // namespace Quon
