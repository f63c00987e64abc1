#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

namespace Quon
{

/// Writes a WAV file of 16 bits and two channels as the sound is rendered. Owned by the driver; one thread.
///
/// Write() gathers; Commit() writes the data out first and then the sizes in the file's head, and hands both
/// to the system. So the file is whole after each Commit(), and a process that ends at any other moment
/// leaves behind it the file of the last one. What the system itself loses, with the power, is not seen to.
///
/// A file ends at 4 GiB, and one that cannot be written on (a full disk) ends at the last Commit(): what
/// comes after that is dropped, and IsOpen() is false.
class WavSink
{
public:
    /// Makes or empties the file `path`, a path of the operating system. False if that fails.
    bool Open(const char* path, int rateHz);

    /// Adds interleaved stereo. Full scale is -1 to 1: what is beyond it is clipped, the rest rounded.
    void Write(std::span<const float> stereo);

    void Commit();

    /// Whether all that has been written is in the file, or can still get there.
    bool IsOpen() const { return file != nullptr; }

private:
    struct Closer
    {
        void operator()(std::FILE* open) const { std::fclose(open); }
    };

    bool WriteHead();

    std::unique_ptr<std::FILE, Closer> file;
    std::uint32_t rate = 0;
    std::uint64_t dataBytes = 0;
};

/// The 16-bit value of a sample: clipped, and rounded to the nearest. What is no number gives 0.
std::int16_t ToSigned16(float sample);

} // namespace Quon
