#include "drivers/openal/effects/GargleEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <numbers>
#include <string>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 20000;
/// No multiple of half the gargle's rate, so that no sideband that is folded at 0 Hz falls on another one.
constexpr int carrierHz = 3010;
constexpr int gargleHz = 50;
constexpr double pi = std::numbers::pi;

enum
{
    Triangle = 0,
    Square = 1
};

// A gain that swings between 0 and 1 is the Fourier series of its shape around one half; each of its parts
// moves half of itself to either side of a carrier.
TEST(Gargle, HasTheSidebandsOfItsShape)
{
    for (const int shape : {Triangle, Square}) {
        GargleEffect gargle({gargleHz, shape}, {rateHz, 1});
        const Pcm out = Through(gargle, MakeSine(carrierHz, 1.0f, rateHz, rateHz));
        EXPECT_NEAR(GetAmplitude(out, carrierHz, rateHz), 0.5, 1e-3);
        for (int k = 1; k <= 9; ++k) {
            SCOPED_TRACE("shape " + std::to_string(shape) + ", sideband " + std::to_string(k));
            const double odd = shape == Triangle ? 2 / (pi * pi * k * k) : 1 / (pi * k);
            const double expected = k % 2 == 1 ? odd : 0.0;
            EXPECT_NEAR(GetAmplitude(out, carrierHz - k * gargleHz, rateHz), expected, 1e-3);
            EXPECT_NEAR(GetAmplitude(out, carrierHz + k * gargleHz, rateHz), expected, 1e-3);
        }
    }
}

TEST(Gargle, BeginsAtSilenceAsATriangleAndAtFullLevelAsASquare)
{
    const Pcm one(rateHz / gargleHz, 1.0f);
    GargleEffect triangle({gargleHz, Triangle}, {rateHz, 1});
    GargleEffect square({gargleHz, Square}, {rateHz, 1});
    const Pcm risen = Through(triangle, one);
    const Pcm switched = Through(square, one);
    for (std::size_t i = 0; i < one.size(); ++i) {
        const double turn = static_cast<double>(i) / static_cast<double>(one.size());
        SCOPED_TRACE(turn);
        EXPECT_NEAR(risen[i], turn < 0.5 ? 2 * turn : 2 - 2 * turn, 1e-5);
        EXPECT_EQ(switched[i], turn < 0.5 ? 1.0f : 0.0f);
    }
}

} // namespace
} // namespace Quon::Testing
