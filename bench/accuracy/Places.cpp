#include "bench/accuracy/Rows.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

namespace Accuracy
{

namespace
{

/// Of each side, for a sound in front of the listener.
constexpr double frontGain = 0.5957;

/// The level of the left side, in dB of a sound in front at full gain.
double MeasurePlaced(const std::function<void(Stage&, Quon::SndChannel&)>& place)
{
    Stage stage(44100);
    Quon::SndChannel& channel =
        stage.Create(stage.Make(44100, 44100 * 2, Tone(441, 44100)), Quon::ChanPositional);
    channel.SetPosition({0.0F, 0.0F, -1.0F});
    place(stage, channel);
    channel.Play();
    stage.Run(1.0);
    return ToDecibels(GetAmplitude(stage.Read().left, 441, 44100) / (0.5 * frontGain));
}

/// The ratio of the left side to the right one, in dB, of a sound so many degrees to the left.
double MeasureBalance(double degrees)
{
    Stage stage(44100);
    Quon::SndChannel& channel =
        stage.Create(stage.Make(44100, 44100 * 2, Tone(441, 44100)), Quon::ChanPositional);
    const double radians = degrees * std::numbers::pi / 180;
    channel.SetPosition(
        {-static_cast<float>(std::sin(radians)), 0.0F, -static_cast<float>(std::cos(radians))});
    channel.Play();
    stage.Run(1.0);
    const Heard heard = stage.Read();
    return ToDecibels(GetAmplitude(heard.left, 441, 44100) / GetAmplitude(heard.right, 441, 44100));
}

void PrintDistances()
{
    for (const int distance : {1, 4, 20, 50, 500}) {
        PrintRow("distance " + std::to_string(distance) + " of 2 to 50",
            ToDecibels(2.0 / std::clamp(distance, 2, 50)), MeasurePlaced([distance](Stage&, auto& c) {
                c.SetMinMaxDistance(2, 50, false);
                c.SetPosition({0, 0, -static_cast<float>(distance)});
            }),
            "dB");
    }
    PrintRow("distance 10 of 2 to 50 with a rolloff of 0.5", ToDecibels(2.0 / (2.0 + 0.5 * 8.0)),
        MeasurePlaced([](Stage& s, auto& c) {
            s.GetDriver().SetRolloffFactor(0.5F);
            c.SetMinMaxDistance(2, 50, false);
            c.SetPosition({0, 0, -10});
        }),
        "dB");
    for (const float distance : {49.0F, 51.0F}) {
        const double level = MeasurePlaced([distance](Stage&, auto& c) {
            c.SetMinMaxDistance(2, 50, true);
            c.SetPosition({0, 0, -distance});
        });
        PrintRow("cutout at 50, gain at a distance of " + std::to_string(std::lround(distance)),
            distance < 50 ? 2.0 / distance : 0.0, std::pow(10.0, level / 20), "", 4);
    }
}

void PrintCones()
{
    const std::pair<int, double> cones[] = {{29, 1.0}, {45, 0.6}, {61, 0.2}, {180, 0.2}};
    for (const auto& [degrees, gain] : cones) {
        const double radians = degrees * std::numbers::pi / 180;
        PrintRow("cone of 60 to 120 degrees and 0.2, turned by " + std::to_string(degrees), ToDecibels(gain),
            MeasurePlaced([radians](Stage&, auto& c) {
                c.SetCone(60, 120, 0.2F);
                c.SetDirection(
                    {static_cast<float>(std::sin(radians)), 0.0F, static_cast<float>(std::cos(radians))});
            }),
            "dB");
    }
}

} // namespace

void PrintPlaces()
{
    PrintRow("gain 0.1", -20.0, MeasurePlaced([](Stage&, auto& c) { c.SetGain(0.1F); }), "dB");
    PrintRow("main gain 0.5", ToDecibels(0.5),
        MeasurePlaced([](Stage& s, auto&) { s.GetDriver().SetMainGain(0.5F); }), "dB");
    PrintDistances();
    PrintCones();
    PrintRow("left to right, in front", 0.0, MeasureBalance(0), "dB");
    PrintRow("left to right, 30 degrees to the left, as right to left at 30 degrees to the right",
        -MeasureBalance(-30), MeasureBalance(30), "dB");
    PrintRow("left side, 30 degrees to the left, relative to in front", ToDecibels(0.9212 / frontGain),
        MeasurePlaced([](Stage&, auto& c) {
            c.SetPosition({-0.5F, 0.0F, -0.86603F});
        }),
        "dB");
}

} // namespace Accuracy
