#pragma once

#include "drivers/openal/EfxFunctions.h"
#include "drivers/openal/ReverbRecords.h"

#include <mutex>

namespace Quon
{

/// Sets the paths of OpenAL sources: the direct one, and those into reverbs. Owned by the Acoustics; any
/// thread with a ContextScope. All does nothing without a device or for source 0.
///
/// OpenAL takes a filter by value, so one that is filled anew each time does for all sources.
class SourceFilters
{
public:
    bool Create(const EfxFunctions& functions);
    void Destroy();

    /// No path into a reverb, nothing that goes by OpenAL's own rules for rooms.
    void Begin(ALuint source, int sendCount);

    void SetDirect(ALuint source, const PathGain& path);
    /// Slot 0 is none.
    void SetSend(ALuint source, int send, ALuint slot, const PathGain& path);
    void SetRoomRolloff(ALuint source, float factor);

private:
    /// Needs the mutex until OpenAL has taken the filter.
    ALuint Fill(const PathGain& path);

    EfxFunctions efx;
    std::mutex mutex; ///< Guards what stands in the filter.
    ALuint filter = 0;
};

} // namespace Quon
