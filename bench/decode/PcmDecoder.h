#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

/// One decoder of a coded sound in memory, as the decoder benchmarks drive it: ours, or a peer.

namespace DecodeBench
{

using Bytes = std::vector<unsigned char>;

class PcmDecoder
{
public:
    virtual ~PcmDecoder() = default;

    const std::string& GetName() const { return name; }
    /// Back to the start, as after opening. Not part of what is timed.
    virtual void Restart() = 0;
    /// Decodes on, to 16-bit interleaved PCM; returns the sample frames written, 0 at the end. There is room
    /// for as many as `pcm` holds.
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
