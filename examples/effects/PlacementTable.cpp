#include "examples/effects/PlacementTable.h"

#include "examples/effects/Stage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <numbers>
#include <string>

namespace EffectsExample
{

namespace
{

constexpr double amplitude = 0.5;

/// How a mono source is distributed to two speakers: as by one microphone for each side, with a gain of 1
/// towards its own side, 0 towards the other, and slightly more towards the front than the back. `degrees` is
/// to the left of straight ahead. Angles in front are multiplied by 1.5, up to 90 degrees.
struct Sides
{
    double left;
    double right;
};

Sides GetSides(double degrees)
{
    constexpr double frontPart = 0.0957;
    const double aside = std::remainder(degrees, 360.0);
    const double widened =
        std::abs(aside) <= 90.0 ? std::copysign(std::min(1.5 * std::abs(aside), 90.0), aside) : aside;
    const double radians = widened * std::numbers::pi / 180.0;
    const double middle = 0.5 + frontPart * std::cos(radians);
    return {middle + 0.5 * std::sin(radians), middle - 0.5 * std::sin(radians)};
}

/// The factor straight ahead, at full level.
const double fullLevel = GetSides(0.0).left;

struct Situation
{
    std::string name;
    std::function<void(Stage&, int)> arrange;
    Sides expected;
};

Situation AtLevel(const std::string& name, double expected, std::function<void(Stage&, int)> arrange)
{
    return {name, std::move(arrange), {expected * fullLevel, expected * fullLevel}};
}

double Level(const std::vector<double>& sound)
{
    // The last complete tenth of a second.
    constexpr std::size_t count = rateHz / 10;
    double power = 0.0;
    for (std::size_t i = sound.size() - count; i < sound.size(); ++i) {
        power += sound[i] * sound[i];
    }
    return std::sqrt(2.0 * power / static_cast<double>(count)) / amplitude;
}

std::vector<Situation> GetGains()
{
    std::vector<Situation> all;
    for (const float gain : {1.0F, 0.5F, 0.1F}) {
        all.push_back(AtLevel("gain " + std::to_string(gain).substr(0, 3), double{gain},
            [=](Stage& stage, int id) { stage.GetSounds().SetSoundGain(id, gain); }));
    }
    all.push_back(AtLevel("gain 0.5, main gain 0.5", 0.25, [](Stage& stage, int id) {
        stage.GetSounds().SetSoundGain(id, 0.5F);
        Quon::SoundSystem::SetMainGain(0.5F);
    }));
    return all;
}

/// min / (min + rolloff * (distance - min)), with the distance clamped to the range.
Situation AtDistance(double minimum, double maximum, double rolloff, double distance)
{
    const double clamped = std::clamp(distance, minimum, maximum);
    char name[100];
    std::snprintf(
        name, sizeof name, "distance %g of %g to %g, rolloff %g", distance, minimum, maximum, rolloff);
    return AtLevel(name, minimum / (minimum + rolloff * (clamped - minimum)), [=](Stage& stage, int id) {
        stage.GetListener().SetRolloffFactor(static_cast<float>(rolloff));
        stage.GetSounds().SetSoundMinMaxDistance(
            id, static_cast<float>(minimum), static_cast<float>(maximum), false);
        stage.GetSounds().SetSoundPosition(id, {0.0F, 0.0F, -static_cast<float>(distance)});
    });
}

std::vector<Situation> GetDistances()
{
    return {AtDistance(2, 50, 1, 1), AtDistance(2, 50, 1, 4), AtDistance(2, 50, 1, 20),
        AtDistance(2, 50, 1, 200), AtDistance(2, 50, 2, 4), AtDistance(2, 50, 0.5, 20),
        AtDistance(2, 50, 0, 20)};
}

std::vector<Situation> GetCutouts()
{
    std::vector<Situation> all;
    for (const float distance : {19.9F, 20.1F}) {
        char name[100];
        std::snprintf(name, sizeof name, "distance %.1f of 10 to 20, cut out", double{distance});
        const double expected = distance > 20.0F ? 0.0 : 10.0 / double{distance};
        all.push_back(AtLevel(name, expected, [=](Stage& stage, int id) {
            stage.GetSounds().SetSoundMinMaxDistance(id, 10.0F, 20.0F, true);
            stage.GetSounds().SetSoundPosition(id, {0.0F, 0.0F, -distance});
        }));
    }
    return all;
}

/// The sound turned away from the listener. At 180 degrees its back faces the listener.
Situation TurnedAway(double degrees)
{
    constexpr float inner = 60.0F;
    constexpr float outer = 120.0F;
    constexpr float outside = 0.2F;
    const double part = std::min(std::max((2.0 * degrees - double{inner}) / double{outer - inner}, 0.0), 1.0);
    char name[100];
    std::snprintf(name, sizeof name, "cone of 60 to 120 degrees and 0.2, turned by %g", degrees);
    return AtLevel(name, 1.0 - part * (1.0 - double{outside}), [=](Stage& stage, int id) {
        const double half = degrees * std::numbers::pi / 360.0;
        stage.GetSounds().SetSoundCone(id, inner, outer, outside);
        // The axis is the node's own +Z, which initially points at the listener.
        stage.GetSounds().BindSoundAxisToDirection(id, 3);
        stage.GetSounds().SetSoundOrientation(
            id, {0.0F, static_cast<float>(std::sin(half)), 0.0F, static_cast<float>(std::cos(half))});
    });
}

std::vector<Situation> GetCones()
{
    return {TurnedAway(0), TurnedAway(30), TurnedAway(45), TurnedAway(52.5), TurnedAway(60), TurnedAway(180)};
}

std::vector<Situation> GetPans()
{
    std::vector<Situation> all;
    for (int degrees = 0; degrees < 360; degrees += 30) {
        const double radians = degrees * std::numbers::pi / 180.0;
        const Quon::Vector3 place = {
            -static_cast<float>(std::sin(radians)), 0.0F, -static_cast<float>(std::cos(radians))};
        all.push_back({std::to_string(degrees) + " degrees to the left",
            [=](Stage& stage, int id) { stage.GetSounds().SetSoundPosition(id, place); }, GetSides(degrees)});
    }
    return all;
}

void PrintRow(const Situation& situation, const std::filesystem::path& folder)
{
    const Pcm tone = MakeTone(amplitude);
    Stage stage(folder / "tone.wav");
    stage.GetListener().SetRolloffFactor(1.0F);
    const int id = stage.Add(tone, {0.0F, 0.0F, -1.0F});
    situation.arrange(stage, id);
    stage.Start(id, true);
    stage.Run(500);
    const Heard heard = stage.Read();
    std::printf("| %s | %.4f | %.4f | %.4f | %.4f |\n", situation.name.c_str(), situation.expected.left,
        Level(heard.left), situation.expected.right, Level(heard.right));
}

} // namespace

void PrintPlacementTable(const std::filesystem::path& folder)
{
    std::printf("| situation | left, by formula | left, measured | right, by formula | right, measured |\n"
                "|---|---|---|---|---|\n");
    for (const auto& part : {GetGains(), GetDistances(), GetCutouts(), GetCones(), GetPans()}) {
        for (const Situation& situation : part) {
            PrintRow(situation, folder);
        }
    }
}

} // namespace EffectsExample
