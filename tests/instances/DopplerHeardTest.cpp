// The Doppler effect, as it is heard.

#include "drivers/openal/DeviceSource.h"
#include "drivers/openal/OutputDevice.h"
#include "tests/instances/HeardTest.h"

#include <cmath>
#include <functional>
#include <numbers>

namespace Quon
{

namespace
{

constexpr int rateHz = 44100;
constexpr double toneHz = 441.0;
constexpr double speedOfSound = 343.0;
constexpr int stepMs = 50;
constexpr double stepSeconds = 0.001 * stepMs;
constexpr int numSteps = 40;

/// Places at a time in seconds.
using Path = std::function<Vector3(double)>;

/// Stands still at the origin.
Vector3 Stand(double)
{
    return Vector3();
}

/// Along the X axis, past the origin after one second, 3 units in front of it.
Path Drive(double speed)
{
    return [speed](double seconds) {
        return Vector3{static_cast<float>(speed * (seconds - 1.0)), 0.0F, -3.0F};
    };
}

class DopplerHeard : public HeardTest
{
protected:
    DopplerHeard()
    {
        SetOption("SoundFrequency", "44100");
        folder.Write("tone", BuildWave({rateHz, rateHz, 1, 16}, [](int frame) {
            return std::lround(20000 * std::sin(2 * std::numbers::pi * toneHz * frame / rateHz));
        }));
    }

    /// Two seconds of a looping tone, without loss of gain by distance, while it and the listener move.
    Rendering Listen(const char* factorPercent, const Path& source, const Path& listener, float ownFactor = 1)
    {
        SetOption("SoundDoppler", factorPercent);
        Sound::Settings far;
        far.setDistance = true;
        far.minDistance = far.maxDistance = 1e6F;
        return Render([&](Scene& scene) {
            const int id =
                scene.group.Play3DSound(source(0.0), "tone", nullptr, Sound::StartLooping, 0, far, 0);
            scene.group.SetSoundDoppler(id, ownFactor);
            for (int step = 0; step < numSteps; ++step) {
                const double seconds = step * stepSeconds;
                scene.group.SetSoundPosition(id, source(seconds));
                scene.microphone.SetPosition(listener(seconds));
                Step(stepMs);
            }
        });
    }
};

/// The frequency between two times, by rising zero crossings, in cents above the tone.
double MeasureCents(const Rendering& heard, double begin, double end)
{
    double first = 0.0;
    double last = 0.0;
    int rising = -1;
    for (auto i = static_cast<std::size_t>(begin * rateHz); i < static_cast<std::size_t>(end * rateHz); ++i) {
        // The sum of both sides, so that the direction does not matter.
        const double before = heard.At(i - 1, 0) + heard.At(i - 1, 1);
        const double now = heard.At(i, 0) + heard.At(i, 1);
        if (before < 0.0 && now >= 0.0) {
            last = static_cast<double>(i) - now / (now - before);
            first = rising < 0 ? last : first;
            ++rising;
        }
    }
    return rising > 0 ? 1200 * std::log2(rateHz * rising / (last - first) / toneHz) : 1e9;
}

/// In which a change of place becomes a change of gain: 10 ms, or what a newer OpenAL Soft takes.
double GetGainRampFrames()
{
    OutputDevice device(DeviceSource::GetMachine());
    EXPECT_TRUE(device.OpenLoopback(rateHz, Hrtf::Off));
    return device.GetSoftVersion() == SoftVersion::New ? gainRampFrames : rateHz / 100.0;
}

double Cents(double factor)
{
    return 1200 * std::log2(factor);
}

TEST_F(DopplerHeard, PitchFollowsTheVelocitiesOfSourceAndListenerByTheFormula)
{
    struct Row
    {
        const char* name;
        const char* factorPercent;
        double sourceSpeed, listenerSpeed;
        float ownFactor;
        double before, after; ///< Factors on the pitch, when far away on either side.
    };
    const double c = speedOfSound;
    const Row rows[] = {{"car passes", "100", 30, 0, 1, c / (c - 30), c / (c + 30)},
        {"listener passes", "100", 0, 30, 1, (c + 30) / c, (c - 30) / c},
        {"both", "100", 30, -20, 1, (c + 20) / (c - 30), (c - 20) / (c + 30)},
        {"twice the effect", "200", 30, 0, 1, c / (c - 60), c / (c + 60)},
        {"own factor", "100", 30, 0, 0.5F, c / (c - 15), c / (c + 15)},
        {"own factor 0", "100", 30, 0, 0, 1, 1}, {"off", nullptr, 30, 0, 1, 1, 1},
        {"supersonic", "100", 400, 0, 1, 2, 1 / 1.5}};
    for (const Row& row : rows) {
        const Path listener = row.listenerSpeed == 0 ? Path(Stand) : [&](double seconds) {
            return Vector3{static_cast<float>(row.listenerSpeed * (seconds - 1.0)), 0.0F, 0.0F};
        };
        const Rendering heard = Listen(row.factorPercent, Drive(row.sourceSpeed), listener, row.ownFactor);
        // Some 20 units away the direction is that of the motion to within 1 %.
        EXPECT_NEAR(MeasureCents(heard, 0.2, 0.35), Cents(row.before), 4.0) << row.name;
        EXPECT_NEAR(MeasureCents(heard, 1.7, 1.95), Cents(row.after), 4.0) << row.name;
    }
}

TEST_F(DopplerHeard, NothingClicksAndALeapDoesNotHowl)
{
    const auto leapAt = [](const Path& undisturbed, double begin, double end, float distance) {
        return [=](double seconds) {
            Vector3 place = undisturbed(seconds);
            place.x += seconds >= begin && seconds < end ? distance : 0.0F;
            return place;
        };
    };
    struct Row
    {
        const char* name;
        Path source, listener;
        double most; ///< Cents, at any time.
    };
    const Path car = Drive(30.0);
    const double carCents = Cents(speedOfSound / (speedOfSound - 30));
    const Row rows[] = {{"car passes", car, Stand, carCents},
        {"source is put elsewhere", leapAt(Drive(0.0), 0.7, 9.0, 10.0F), Stand, 0.0},
        {"far away", leapAt(Drive(0.0), 0.7, 9.0, 1e5F), Stand, 0.0},
        {"and back", leapAt(Drive(0.0), 0.7, 0.75, -50.0F), Stand, 0.0},
        {"while it drives", leapAt(car, 0.4, 9.0, 500.0F), Stand, carCents},
        {"the listener", car, leapAt(Stand, 0.4, 9.0, -30.0F), carCents},
        // Steps of 50 Hz, of which an update sees 2 or 3.
        {"fixed steps", [](double seconds) { return Drive(30.0)(std::floor(seconds * 50.0 + 1e-6) / 50.0); },
            Stand, carCents + 12.0}};
    constexpr std::size_t afterOnset = rateHz * 6 / 100;
    const double rampFrames = GetGainRampFrames();
    for (const Row& row : rows) {
        const Rendering heard = Listen("100", row.source, row.listener);
        for (int half = 2; half < 76; ++half) {
            const double begin = half * stepSeconds / 2;
            EXPECT_LE(std::abs(MeasureCents(heard, begin, begin + 0.05)), row.most + 5.0)
                << row.name << " at " << begin;
        }
        // A tone of that amplitude and pitch bends so much; its sides are worth no more than 1 each, and at a
        // leap from one side to the other the ramp between them bends too.
        constexpr double amplitude = 20000.0 / 32768;
        const double bend =
            amplitude * std::pow(2 * std::numbers::pi * toneHz * std::exp2(row.most / 1200) / rateHz, 2);
        EXPECT_LE(heard.LargestBend(afterOnset, heard.GetFrames()), 1.1 * bend + amplitude / rampFrames)
            << row.name;
    }
}

} // namespace

} // namespace Quon
