#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

namespace Quon
{

/// Writes a 16-bit stereo WAV file while the output is rendered. Owned by the driver; one thread.
///
/// Write() buffers; Commit() writes first the data and then the sizes in the file's header, and flushes both
/// to the system. The file is thus complete after each Commit(), and a process that ends at any other time
/// leaves the file of the last one. Losses by the system itself, such as in a power failure, are not handled.
///
/// A file ends at 4 GiB, and one that cannot grow (disk full) ends at the last Commit(): later data are
/// dropped, and IsOpen() returns false.
class WavSink
{
public:
    /// Creates or truncates the file `path`, a native path. Returns false on failure.
    bool Open(const char* path, int newRateHz);

    /// Adds interleaved stereo. Full scale is -1 to 1: values beyond it are clipped, all others rounded.
    void Write(std::span<const float> stereo);

    void Commit();

    /// Whether all data written are in the file or can still be written to it.
    bool IsOpen() const { return file != nullptr; }

private:
    struct Closer
    {
        void operator()(std::FILE* open) const { std::fclose(open); }
    };

    bool WriteHeader();

    std::unique_ptr<std::FILE, Closer> file;
    int rateHz = 0;
    std::uint64_t dataBytes = 0;
};

/// Converts a sample to 16 bits, clipped and rounded to nearest. NaN becomes 0.
std::int16_t ToSigned16(float sample);

} // namespace Quon
