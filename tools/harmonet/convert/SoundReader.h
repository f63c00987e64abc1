#pragma once

#include "tools/harmonet/InputFile.h"
#include "tools/harmonet/convert/SampleStage.h"

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Tool
{

/// Reads every type of sound file that libsndfile supports, from start to end.
class SoundReader final : public SampleStage
{
public:
    /// Returns null for a file that is not a sound. Throws a ToolError for one that does not exist or has a
    /// damaged header.
    static std::unique_ptr<SoundReader> Open(const InputFile& input);

    int GetChannels() const override { return info.channels; }
    int GetRateHz() const override { return info.samplerate; }
    /// Ends where the file is damaged. Throws a ToolError if nothing before the damage can be decoded.
    std::size_t Read(float* out, std::size_t frames) override;

    bool IsMpegLayer3() const;
    /// Returns the type of the file and of its samples, such as "FLAC (Free Lossless Audio Codec), Signed 24
    /// bit PCM".
    std::string Describe() const;
    /// Returns one of libsndfile's SF_CHANNEL_MAP numbers for each channel; empty if the file has no channel
    /// map.
    std::vector<int> GetChannelMap() const;
    /// After everything has been read: returns a sentence about what is missing at the end; empty for a
    /// complete file.
    std::string DescribeMissing() const;

private:
    struct Close
    {
        void operator()(SNDFILE* opened) const { sf_close(opened); }
    };

    SoundReader(std::string newShown, const SF_INFO& newInfo, SNDFILE* opened);

    std::string shown;
    SF_INFO info;
    std::unique_ptr<SNDFILE, Close> file;
    std::int64_t framesRead = 0;
    std::string damage; ///< Why the decoder stopped early; empty if it did not.
};

} // namespace Tool
