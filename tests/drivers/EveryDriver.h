#pragma once

#include "tests/drivers/DriverRig.h"
#include "tests/drivers/FormulaFile.h"

#include <gtest/gtest.h>

namespace Quon
{

/// Requirements on every driver. Each program that links these tests passes functions that create its
/// drivers.
class EveryDriver : public testing::TestWithParam<std::unique_ptr<DriverRig> (*)(int maxChannels)>
{
protected:
    FormulaFile& Make(int sampleFrames, int rateHz = 44100)
    {
        return rig->Make({sampleFrames, rateHz}, Constant(0.1));
    }

    /// Files of these lengths that follow each other.
    std::vector<FormulaFile*> MakeQueue(const std::vector<int>& lengths, int rateHz = 44100)
    {
        return rig->MakeQueue(lengths, {0, rateHz}, Constant(0.1));
    }

    std::unique_ptr<DriverRig> rig = GetParam()(4);
};

} // namespace Quon
