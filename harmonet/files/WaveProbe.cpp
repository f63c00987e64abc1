#include "harmonet/files/WaveProbe.h"

#include "harmonet/files/RiffWalk.h"
#include "harmonet/files/SndFile.h"

namespace Quon
{

int ProbeWave(SndFileHandle* handle)
{
    return ProbeTag(FindFormatTag(*handle));
}

int ProbeFormat(const WaveFormatEx* format)
{
    return format != nullptr ? ProbeTag(format->formatTag) : SndFile::FileNone;
}

int ProbeTag(int formatTag)
{
    switch (formatTag) {
    case waveTagPcm:
        return SndFile::FileWav;
    case waveTagAdpcm:
        return SndFile::FileAdpcm;
    default:
        return SndFile::FileNone;
    }
}

} // namespace Quon
