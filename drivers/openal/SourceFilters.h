#pragma once

#include "drivers/openal/EfxFunctions.h"
#include "drivers/openal/ReverbRecords.h"

#include <mutex>

namespace Quon
{

/// Sets the paths of OpenAL sources: the direct one, and those into reverbs. Owned by the Acoustics; any
/// thread with a ContextScope. All functions do nothing without a device or for source 0.
///
/// OpenAL copies a filter, so one filter that is set each time serves all sources.
class SourceFilters
{
public:
    bool Create(const EfxFunctions& functions);
    void Destroy();

    /// Removes all paths into reverbs and disables OpenAL's automatic filters.
    void Begin(ALuint source, int sendCount);

    void SetDirect(ALuint source, const PathGain& path);
    /// Slot 0 is none.
    void SetSend(ALuint source, int send, ALuint slot, const PathGain& path);
    void SetRoomRolloff(ALuint source, float factor);

private:
    /// Needs the mutex until OpenAL has copied the filter.
    ALuint Fill(const PathGain& path);

    EfxFunctions efx;
    std::mutex mutex; ///< Guards the filter's parameters.
    ALuint filter = 0;
};

} // namespace Quon
