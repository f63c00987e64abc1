#include "tests/drivers/OfflineRig.h"

#include <gtest/gtest.h>
#include <sndfile.h>

namespace Quon
{

Rendering ReadRendering(const std::string& path)
{
    Rendering read;
    SF_INFO info = {};
    SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file) {
        ADD_FAILURE() << path << " is not a sound file: " << sf_strerror(nullptr);
        return read;
    }
    read.rateHz = info.samplerate;
    read.channels = info.channels;
    read.isSigned16 = info.format == (SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    read.samples.resize(static_cast<size_t>(info.frames * info.channels));
    EXPECT_EQ(sf_readf_double(file, read.samples.data(), info.frames), info.frames);
    sf_close(file);
    return read;
}

} // namespace Quon
