#pragma once

#include "harmonet/files/SndFile.h"

namespace Quon
{

/// The reader of PCM: wave files, and blocks of raw samples in the caller's memory. It delivers the samples
/// as stored, of any width in whole bytes. Ownership and threads as for every SndFile.
///
/// A file or format with zero channels, a rate of 0 or of 2^31 Hz and more, or fewer than 8 bits per sample
/// is refused. The number of sample frames is clamped to the maximum of an int.
class HARMONET_API SndFileWav : public SndFile
{
public:
    /// Also refuses a null block with a size above 0, and blocks of 4 GiB and more.
    bool OpenMemory(void* newData, unsigned long newSize, WaveFormatEx* format) override;
    bool Open(SndNode* newNode) override;
    bool OpenHandle(SndFileHandle* newHandle) override;
    /// Returns null: the format in the node is sufficient.
    void* CreateNodeInfo() override;
    int ReadSamples(unsigned char* buffer, int samples) override;
    /// Accesses neither the file nor a buffer: a file shorter than stated is not detected here.
    int SkipSamples(int samples) override;
    void Rewind() override;
    unsigned long GetRemainLength() override;
    unsigned long GetCurrentLength() override;

private:
    bool ParseWave();
    bool TakeFormat(const WaveFormatEx& format);
    int BytesPerFrame() const { return bytesPerSample * channels; }
};

} // namespace Quon
