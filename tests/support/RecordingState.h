#pragma once

#include "tests/support/Recording.h"

#include <cmath>

/// Internal state of the recording driver's library.

namespace Quon
{

class RecordingDriver;

class RecordingState final : public Recording
{
public:
    int Read(int channel, int sampleFrames) override;
    void StepFile(int channel) override;
    void End(int channel) override;
    void Reset() override;

    void Add(std::string line) { lines.push_back(std::move(line)); }
    void Require(bool holds, const std::string& otherwise);

    RecordingDriver* driver = nullptr; ///< The one that lives, or null.
};

extern RecordingState recording;

inline bool IsFinite(const Vector3& vector)
{
    return std::isfinite(vector.x) && std::isfinite(vector.y) && std::isfinite(vector.z);
}

} // namespace Quon
