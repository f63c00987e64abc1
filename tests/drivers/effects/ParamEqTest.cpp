#include "drivers/openal/effects/ParamEqEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <string>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 44100;

/// The gain of a sine after everything that does not last has died away.
double MeasureGain(const FXParamEq& record, double frequencyHz)
{
    constexpr float amplitude = 0.5f;
    ParamEqEffect equaliser(record, {rateHz, 1});
    Through(equaliser, MakeSine(frequencyHz, amplitude, rateHz, rateHz));
    const Pcm out = Through(equaliser, MakeSine(frequencyHz, amplitude, rateHz, rateHz));
    return ToDecibels(GetAmplitude(out, frequencyHz, rateHz) / amplitude);
}

// The definition of a band: all of the gain at its centre, half of its decibels at the edges, which lie half
// of the bandwidth below and above, and none far away.
TEST(ParamEq, HasItsGainAtTheCentreHalfAtTheEdgesAndNoneFarAway)
{
    struct Row
    {
        FXParamEq record;
        double lowEdgeHz; ///< A whole number, so that the sines of two seconds join.
        double highEdgeHz;
    };
    const Row rows[] = {
        {{1000.0f, 12.0f, 15.0f}, 707, 1414},
        {{1000.0f, 12.0f, -9.0f}, 707, 1414},
        {{1000.0f, 36.0f, 6.0f}, 354, 2828},
        {{400.0f, 1.0f, 12.0f}, 389, 412},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("centre " + std::to_string(row.record.center) + ", width " +
            std::to_string(row.record.bandwidth) + ", gain " + std::to_string(row.record.gain));
        EXPECT_NEAR(MeasureGain(row.record, row.record.center), row.record.gain, 0.02);
        EXPECT_NEAR(MeasureGain(row.record, row.lowEdgeHz), row.record.gain / 2, 0.25);
        EXPECT_NEAR(MeasureGain(row.record, row.highEdgeHz), row.record.gain / 2, 0.25);
        EXPECT_NEAR(MeasureGain(row.record, 10), 0.0, 0.1);
        EXPECT_NEAR(MeasureGain(row.record, 20000), 0.0, 0.1);
    }
}

} // namespace
} // namespace Quon::Testing
