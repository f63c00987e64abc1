#include "drivers/openal/effects/GargleEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 20000;
constexpr int gargleHz = 50;

enum
{
    Triangle = 0,
    Square = 1
};

TEST(Gargle, BeginsAtSilenceAsATriangleAndAtFullLevelAsASquareAndGoesOn)
{
    constexpr std::size_t period = rateHz / gargleHz;
    const Pcm one(20 * period, 1.0f);
    GargleEffect triangle({gargleHz, Triangle}, {rateHz, 1});
    GargleEffect square({gargleHz, Square}, {rateHz, 1});
    const Pcm risen = Through(triangle, one);
    const Pcm switched = Through(square, one);
    for (std::size_t i = 0; i < one.size(); ++i) {
        const double turn = static_cast<double>(i % period) / static_cast<double>(period);
        SCOPED_TRACE(i);
        EXPECT_NEAR(risen[i], turn < 0.5 ? 2 * turn : 2 - 2 * turn, 1e-4);
        EXPECT_EQ(switched[i], turn < 0.5 ? 1.0f : 0.0f);
    }
}

} // namespace
} // namespace Quon::Testing
