#include "tests/instances/PolylineModel.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

constexpr float tiny = 1.1920929e-07F;

float Length2(float x, float y)
{
    const float a = std::fabs(x);
    const float b = std::fabs(y);
    if (a < 0.414213F * b) {
        return a * a * 0.483608F / b + b;
    }
    if (b < 0.414213F * a) {
        return b * b * 0.483608F / a + a;
    }
    const float s = a + b;
    if (s == 0.0F) {
        return 0.0F;
    }
    return s * 1.04907F - a * b * 1.36785F / s;
}

float Length3(const Vector3& v)
{
    return Length2(Length2(v.x, v.y), v.z);
}

} // namespace

PolylineModel::PolylineModel(const Settings& newSettings)
    : settings(newSettings)
{
    LimitSources();
    BuildPieces();
    range = settings.maxDistance;
    if (!settings.cutout && settings.minDistance * 30.0F > range) {
        range = settings.minDistance * 30.0F;
    }
}

void PolylineModel::LimitSources()
{
    int additional = static_cast<int>(std::min(settings.numAddSounds, 7U));
    angle = std::fabs(settings.minAngle);
    if (angle < 10.0F) {
        additional = 0;
    }
    else {
        while (angle >= 180.0F) {
            angle -= 180.0F;
        }
    }
    if (angle != 0.0F) {
        const int most = static_cast<int>(360.0F / angle);
        if (additional >= most) {
            additional = most - 1;
        }
    }
    if (angle > 135.0F) {
        angle -= 20.0F;
    }
    else if (angle > 90.0F) {
        angle -= 15.0F;
    }
    else if (angle > 45.0F) {
        angle -= 10.0F;
    }
    else if (angle > 10.0F) {
        angle -= 5.0F;
    }
    numSources = additional + 1;
}

void PolylineModel::BuildPieces()
{
    const std::vector<Vector3>& points = settings.points;
    Vector3 kept = points[0];
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Vector3 way = points[i] - kept;
        const float length = Length3(way);
        if (length < tiny) {
            continue;
        }
        pieces.push_back({points[i - 1], {way.x / length, way.y / length, way.z / length}, length});
        kept = points[i];
    }
    if (pieces.empty()) {
        pieces.push_back({points[0], (points[1] - points[0]) * 8388608.0F, tiny});
    }
}

bool PolylineModel::IsBoxInReach(const Vector3& listener) const
{
    Vector3 low = settings.points[0];
    Vector3 high = low;
    for (const Vector3& p : settings.points) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    const auto overlaps = [this](float place, float from, float to) {
        return place - range <= to && place + range >= from;
    };
    return overlaps(listener.x, low.x, high.x) && overlaps(listener.y, low.y, high.y) &&
        overlaps(listener.z, low.z, high.z);
}

PolylineModel::Foot PolylineModel::FindFoot(const Piece& piece, const Vector3& listener)
{
    const Vector3 toListener = listener - piece.start;
    float t = toListener.x * piece.direction.x + toListener.y * piece.direction.y +
        toListener.z * piece.direction.z;
    t = std::min(std::max(t, 0.0F), piece.length);
    const Vector3 position = piece.start + piece.direction * t;
    return {{position, Length3(position - listener)}, t};
}

std::vector<PolylineModel::Place> PolylineModel::ListCandidates(const Vector3& listener) const
{
    const float pointSpacing = std::max(settings.minDistance * 0.5F, settings.maxDistance * 0.01F);
    float totalLength = 0.0F;
    for (const Piece& piece : pieces) {
        totalLength += piece.length;
    }
    int left = static_cast<int>(pieces.size());
    int budget = static_cast<int>(totalLength / pointSpacing) + left;
    std::vector<Place> candidates;
    for (const Piece& piece : pieces) {
        const Foot foot = FindFoot(piece, listener);
        if (foot.place.distance <= range) {
            candidates.push_back(foot.place);
            --budget;
            const float spacing = std::max(foot.place.distance * 0.2F, pointSpacing);
            for (const float sign : {1.0F, -1.0F}) {
                for (int k = 1; spacing > tiny && budget > left; ++k) {
                    const float along = foot.along + static_cast<float>(k) * sign * spacing;
                    if (along < 0.0F || along >= piece.length) {
                        break;
                    }
                    const Vector3 position = piece.start + piece.direction * along;
                    const float distance = Length3(position - listener);
                    if (distance > settings.maxDistance) {
                        break;
                    }
                    candidates.push_back({position, distance});
                    --budget;
                }
            }
        }
        --left;
    }
    return candidates;
}

std::vector<Vector3> PolylineModel::Choose(std::vector<Place> candidates, const Vector3& listener) const
{
    std::stable_sort(candidates.begin(), candidates.end(),
        [](const Place& a, const Place& b) { return a.distance < b.distance; });
    const auto cosMinAngle = static_cast<float>(std::cos(3.14159265358979 * angle / 180.0));
    std::vector<Place> chosen;
    for (const Place& candidate : candidates) {
        if (static_cast<int>(chosen.size()) == numSources) {
            break;
        }
        const auto isApart = [&](const Place& placed) {
            if (candidate.distance <= tiny || placed.distance <= tiny) {
                return false;
            }
            const Vector3 a = placed.position - listener;
            const Vector3 b = candidate.position - listener;
            const float product = a.x * b.x + a.y * b.y + a.z * b.z;
            return product / (placed.distance * candidate.distance) <= cosMinAngle;
        };
        if (std::all_of(chosen.begin(), chosen.end(), isApart)) {
            chosen.push_back(candidate);
        }
    }
    std::vector<Vector3> positions;
    for (const Place& place : chosen) {
        positions.push_back(place.position);
    }
    return positions;
}

void PolylineModel::MoveSingle(const Vector3& listener)
{
    Place best = FindFoot(pieces[0], listener).place;
    for (const Piece& piece : pieces) {
        const Place place = FindFoot(piece, listener).place;
        if (place.distance < best.distance) {
            best = place;
        }
    }
    places.clear();
    if (best.distance < range) {
        places.push_back(best.position);
    }
}

const std::vector<Vector3>& PolylineModel::Move(const Vector3& listener)
{
    const bool isInReach = IsBoxInReach(listener);
    if (numSources == 1) {
        // Out of reach of the box, the single source stays at its last place.
        if (isInReach) {
            MoveSingle(listener);
        }
    }
    else if (isInReach) {
        places = Choose(ListCandidates(listener), listener);
    }
    else {
        places.clear();
    }
    return places;
}

} // namespace Quon
