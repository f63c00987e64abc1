#pragma once

#include "tools/harmonet/InputFile.h"
#include "tools/harmonet/convert/SampleStage.h"

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Tool
{

/// Reads every kind of sound file that libsndfile knows, from its start to its end.
class SoundReader final : public SampleStage
{
public:
    /// Null for a file that is no sound. Throws a ToolError for one that is not there or damaged at its head.
    static std::unique_ptr<SoundReader> Open(const InputFile& input);

    int GetChannels() const override { return info.channels; }
    int GetRateHz() const override { return info.samplerate; }
    /// Ends where the file is damaged. Throws a ToolError when nothing before that can be decoded.
    std::size_t Read(float* out, std::size_t frames) override;

    bool IsMpegLayer3() const;
    /// The kind of file and of its samples, such as "FLAC (Free Lossless Audio Codec), Signed 24 bit PCM".
    std::string Describe() const;
    /// For each channel one of libsndfile's SF_CHANNEL_MAP numbers; empty if the file does not say.
    std::vector<int> GetChannelMap() const;
    /// Once all has been read: what is missing at the end, as a sentence; empty for a whole file.
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
    std::string damage; ///< What the decoder could not go on for; empty for none.
};

} // namespace Tool
