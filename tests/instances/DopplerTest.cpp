// The pitch that the Doppler effect gives a channel. What a driver makes of it is heard in the driver's
// tests.

#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Sound.h"
#include "tests/support/HostTest.h"

#include <cmath>
#include <functional>

namespace Quon
{

namespace
{

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

double Cents(double factor)
{
    return 1200 * std::log2(factor);
}

class Doppler : public HostTest
{
protected:
    /// The pitch in cents at each update of two seconds in which a sound and the listener move.
    std::vector<double> Move(
        const char* factorPercent, const Path& source, const Path& listener, float ownFactor = 1)
    {
        SetOption("SoundDoppler", factorPercent);
        EXPECT_TRUE(Start());
        std::vector<double> cents;
        {
            Microphone microphone;
            microphone.Activate();
            Sound group;
            Sound::Settings far;
            far.setDistance = true;
            far.minDistance = far.maxDistance = 1e6F;
            const int id = group.Play3DSound(
                source(0.0), WriteWave("a.wav", {5000}), nullptr, Sound::StartImmediately, 0, far, 0);
            group.SetSoundDoppler(id, ownFactor);
            for (int step = 0; step < numSteps; ++step) {
                group.SetSoundPosition(id, source(step * stepSeconds));
                microphone.SetPosition(listener(step * stepSeconds));
                Step(stepMs);
                cents.push_back(Cents(recording.channels.at(1).pitch));
            }
        }
        system.Done();
        return cents;
    }
};

TEST_F(Doppler, PitchFollowsTheVelocitiesOfSourceAndListenerByTheFormula)
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
        const std::vector<double> cents =
            Move(row.factorPercent, Drive(row.sourceSpeed), listener, row.ownFactor);
        // Some 20 units away the direction is that of the motion to within 1 %.
        EXPECT_NEAR(cents[6], Cents(row.before), 4.0) << row.name;
        EXPECT_NEAR(cents[36], Cents(row.after), 4.0) << row.name;
    }
}

TEST_F(Doppler, ALeapDoesNotHowl)
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
    for (const Row& row : rows) {
        for (const double cents : Move("100", row.source, row.listener)) {
            EXPECT_LE(std::abs(cents), row.most + 5.0) << row.name;
        }
    }
}

} // namespace

} // namespace Quon
