#include "tools/harmonet/SoundData.h"

#include "tools/harmonet/ToolError.h"
#include "tools/harmonet/convert/Diagnosis.h"

#include <array>
#include <cstdio>

namespace Tool
{

std::unique_ptr<Quon::SndFile> OpenSoundData(const FileArguments::File& file)
{
    std::unique_ptr<Quon::SndFile> data(Quon::SndFile::OpenFile(Quon::PString(), file.name));
    if (!data) {
        throw ToolError("'" + file.shown + "' is neither a PCM or Microsoft ADPCM wave nor MPEG Layer III" +
                DescribeRemedy(file.shown),
            ExitCode::BadInput);
    }
    return data;
}

const char* DescribeType(const Quon::SndFile& data)
{
    switch (data.FileType()) {
    case Quon::SndFile::FileWav:
        return "PCM wave";
    case Quon::SndFile::FileAdpcm:
        return "Microsoft ADPCM wave";
    case Quon::SndFile::FileMP3:
        return "MPEG Layer III";
    default:
        return "unknown";
    }
}

std::string DescribeTime(unsigned long ms)
{
    constexpr unsigned long unknownMs = 0xFFFFFFFF;
    if (ms == unknownMs) {
        return "unknown";
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%lu:%02lu.%lu", ms / 60000, ms / 1000 % 60, ms / 100 % 10);
    return text.data();
}

} // namespace Tool
