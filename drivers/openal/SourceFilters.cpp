#include "drivers/openal/SourceFilters.h"

namespace Quon
{

bool SourceFilters::Create(const EfxFunctions& functions)
{
    efx = functions;
    alGetError();
    efx.genFilters(1, &filter);
    if (alGetError() != AL_NO_ERROR) {
        filter = 0;
        return false;
    }
    efx.filteri(filter, AL_FILTER_TYPE, AL_FILTER_LOWPASS);
    return true;
}

void SourceFilters::Destroy()
{
    if (filter != 0) {
        efx.deleteFilters(1, &filter);
        filter = 0;
    }
}

ALuint SourceFilters::Fill(const PathGain& path)
{
    if (path.gain == 1.0F && path.gainHF == 1.0F) {
        return AL_FILTER_NULL;
    }
    efx.filterf(filter, AL_LOWPASS_GAIN, path.gain);
    efx.filterf(filter, AL_LOWPASS_GAINHF, path.gainHF);
    return filter;
}

void SourceFilters::Begin(ALuint source, int sendCount)
{
    if (filter == 0 || source == 0) {
        return;
    }
    alSourcei(source, AL_AUXILIARY_SEND_FILTER_GAIN_AUTO, AL_FALSE);
    alSourcei(source, AL_AUXILIARY_SEND_FILTER_GAINHF_AUTO, AL_FALSE);
    alSourcei(source, AL_DIRECT_FILTER_GAINHF_AUTO, AL_FALSE);
    SetDirect(source, {});
    SetRoomRolloff(source, 0.0F);
    for (int send = 0; send < sendCount; ++send) {
        SetSend(source, send, AL_EFFECTSLOT_NULL, {});
    }
}

void SourceFilters::SetDirect(ALuint source, const PathGain& path)
{
    if (filter != 0 && source != 0) {
        const std::scoped_lock lock(mutex);
        alSourcei(source, AL_DIRECT_FILTER, static_cast<ALint>(Fill(path)));
    }
}

void SourceFilters::SetSend(ALuint source, int send, ALuint slot, const PathGain& path)
{
    if (filter != 0 && source != 0) {
        const std::scoped_lock lock(mutex);
        alSource3i(
            source, AL_AUXILIARY_SEND_FILTER, static_cast<ALint>(slot), send, static_cast<ALint>(Fill(path)));
    }
}

void SourceFilters::SetRoomRolloff(ALuint source, float factor)
{
    if (filter != 0 && source != 0) {
        alSourcef(source, AL_ROOM_ROLLOFF_FACTOR, factor);
    }
}

} // namespace Quon
