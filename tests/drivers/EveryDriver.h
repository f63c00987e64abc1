#pragma once

#include "tests/drivers/DriverRig.h"
#include "tests/drivers/FormulaFile.h"

#include <gtest/gtest.h>

namespace Quon
{

/// What every driver owes the library, on one driver after the other: each program that links these tests
/// gives them the makers of those that it has.
class EveryDriver : public testing::TestWithParam<std::unique_ptr<DriverRig> (*)(int maxChannels)>
{
protected:
    /// A file that lives as long as the test.
    FormulaFile& Make(int sampleFrames, int rateHz = 44100)
    {
        files.push_back(MakeFile({sampleFrames, rateHz}, Constant(0.1)));
        return *files.back();
    }

    /// Files of these lengths that follow each other; the first of them.
    FormulaFile& MakeQueue(const std::vector<int>& lengths, int rateHz = 44100)
    {
        const size_t head = files.size();
        for (const int length : lengths) {
            FormulaFile& file = Make(length, rateHz);
            if (&file != files[head].get()) {
                files[head]->Add(&file);
            }
        }
        return *files[head];
    }

    std::vector<std::unique_ptr<FormulaFile>> files;
    std::unique_ptr<DriverRig> rig = GetParam()(4);
};

} // namespace Quon
