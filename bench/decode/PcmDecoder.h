#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

/// The decoder of an encoded sound in memory, Harmonet's or a peer's, as the benchmarks drive it.

namespace DecodeBench
{

using Bytes = std::vector<unsigned char>;

class PcmDecoder
{
public:
    virtual ~PcmDecoder() = default;

    const std::string& GetName() const { return name; }
    /// Returns to the start, as after opening. Not timed.
    virtual void Restart() = 0;
    /// Continues decoding to 16-bit interleaved PCM. Writes at most pcm.size() values and returns the number
    /// of sample frames, 0 at the end.
    virtual int Decode(std::span<short> pcm) = 0;

protected:
    explicit PcmDecoder(std::string newName)
        : name(std::move(newName))
    {
    }

private:
    std::string name;
};

using PcmDecoderPointer = std::unique_ptr<PcmDecoder>;

} // namespace DecodeBench
