#include "harmonet/files/WaveProbe.h"

#include "harmonet/files/RiffWalk.h"
#include "harmonet/files/SndFile.h"

namespace Quon
{

int ProbeWave(SndFileHandle* handle)
{
    RiffWalk walk(*handle);
    while (walk.Next()) {
        if (!walk.Is("fmt "))
            continue;
        if (walk.GetSize() < RiffWalk::minFormatBytes || walk.GetSize() > RiffWalk::maxFormatBytes)
            return SndFile::FileNone;
        const WaveFormatEx format = walk.ReadFormat();
        return ProbeFormat(&format);
    }
    return SndFile::FileNone;
}

int ProbeFormat(const WaveFormatEx* format)
{
    if (format == nullptr)
        return SndFile::FileNone;
    switch (format->formatTag) {
    case waveTagPcm:
        return SndFile::FileWav;
    case waveTagAdpcm:
        return SndFile::FileAdpcm;
    default:
        return SndFile::FileNone;
    }
}

} // namespace Quon
