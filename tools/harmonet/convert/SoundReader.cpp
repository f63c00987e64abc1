#include "tools/harmonet/convert/SoundReader.h"

#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"

#include <array>
#include <filesystem>

namespace Tool
{

namespace
{

std::string FormatName(SNDFILE* file, int format)
{
    SF_FORMAT_INFO name{};
    name.format = format;
    sf_command(file, SFC_GET_FORMAT_INFO, &name, sizeof name);
    return name.name ? name.name : "unknown";
}

void CheckIsFile(const InputFile& input)
{
    std::error_code error;
    const auto status = std::filesystem::status(ToPath(input.GetPath()), error);
    if (status.type() == std::filesystem::file_type::not_found) {
        throw ToolError("there is no file '" + input.GetShown() + "'", ExitCode::NoInput);
    }
    if (status.type() != std::filesystem::file_type::regular) {
        throw ToolError("'" + input.GetShown() + "' is not a file", ExitCode::NoInput);
    }
}

} // namespace

std::unique_ptr<SoundReader> SoundReader::Open(const InputFile& input)
{
    CheckIsFile(input);
    SF_INFO info{};
    SNDFILE* const opened = sf_open(input.GetPath().c_str(), SFM_READ, &info);
    if (opened) {
        return std::unique_ptr<SoundReader>(new SoundReader(input.GetShown(), info, opened));
    }
    if (sf_error(nullptr) == SF_ERR_UNRECOGNISED_FORMAT) {
        return nullptr;
    }
    const bool isRefused = sf_error(nullptr) == SF_ERR_SYSTEM;
    throw ToolError("'" + input.GetShown() + "' cannot be read: " + sf_strerror(nullptr),
        isRefused ? ExitCode::NoInput : ExitCode::BadInput);
}

SoundReader::SoundReader(std::string newShown, const SF_INFO& newInfo, SNDFILE* opened)
    : shown(std::move(newShown))
    , info(newInfo)
    , file(opened)
{
    // A malformed file can contain any value, and later code multiplies by it.
    constexpr int maxChannels = 64;
    if (info.channels < 1 || info.channels > maxChannels || info.samplerate < 1) {
        throw ToolError("'" + shown + "' has an unsupported number of channels or rate", ExitCode::BadInput);
    }
}

std::size_t SoundReader::Read(float* out, std::size_t frames)
{
    if (!damage.empty()) {
        return 0;
    }
    const sf_count_t got = sf_readf_float(file.get(), out, static_cast<sf_count_t>(frames));
    framesRead += got;
    if (sf_error(file.get()) != SF_ERR_NO_ERROR) {
        damage = sf_strerror(file.get());
    }
    const bool isEnd = got < static_cast<sf_count_t>(frames);
    if (isEnd && framesRead == 0 && info.frames > 0) {
        throw ToolError("'" + shown + "' is damaged: none of its sound can be decoded" +
                (damage.empty() ? "" : " (" + damage + ")"),
            ExitCode::BadInput);
    }
    return static_cast<std::size_t>(got);
}

bool SoundReader::IsMpegLayer3() const
{
    return (info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_MPEG &&
        (info.format & SF_FORMAT_SUBMASK) == SF_FORMAT_MPEG_LAYER_III;
}

std::string SoundReader::Describe() const
{
    return FormatName(file.get(), info.format & SF_FORMAT_TYPEMASK) + ", " +
        FormatName(file.get(), info.format & SF_FORMAT_SUBMASK);
}

std::vector<int> SoundReader::GetChannelMap() const
{
    std::vector<int> map(static_cast<std::size_t>(info.channels));
    const int bytes = static_cast<int>(map.size() * sizeof(int));
    if (sf_command(file.get(), SFC_GET_CHANNEL_MAP_INFO, map.data(), bytes) == SF_FALSE) {
        map.clear();
    }
    return map;
}

std::string SoundReader::DescribeMissing() const
{
    if (!damage.empty()) {
        return "'" + shown + "' is cut off or damaged after " + std::to_string(framesRead) +
            " sample frames; only these are used (" + damage + ")";
    }
    if (info.frames == SF_COUNT_MAX) {
        return "'" + shown + "' is cut off: its end is missing after " + std::to_string(framesRead) +
            " sample frames";
    }
    if (framesRead < info.frames) {
        return "'" + shown + "' is cut off: it holds " + std::to_string(framesRead) + " of " +
            std::to_string(info.frames) + " sample frames";
    }
    // libsndfile counts the sample frames that a wave file holds. Only its log contains the length that the
    // header states.
    std::array<char, 16384> log{};
    sf_command(file.get(), SFC_GET_LOG_INFO, log.data(), log.size());
    const std::string text = log.data();
    const std::size_t data = text.find("\ndata : ");
    const std::string line =
        data == std::string::npos ? "" : text.substr(data + 1, text.find('\n', data + 1) - data);
    if (line.find("(should be ") != std::string::npos) {
        return "'" + shown + "' is cut off: it holds fewer bytes of sound than its header states";
    }
    return "";
}

} // namespace Tool
