#include "harmonet/files/Refusal.h"

#include "harmonet/engine/Messages.h"
#include "harmonet/files/RiffWalk.h"
#include "harmonet/files/SndFileHandle.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <string_view>

namespace Quon
{

namespace
{

constexpr unsigned int waveTagFloat = 3;
constexpr unsigned int waveTagExtensible = 0xFFFE;

template<class... Parts>
EngineString Join(const Parts&... parts)
{
    EngineString text;
    (Messages::Append(text, parts), ...);
    return text;
}

const char* NameFormatTag(unsigned int tag)
{
    struct Name
    {
        unsigned int tag;
        const char* name;
    };
    static constexpr Name names[] = {{waveTagAdpcm, "Microsoft ADPCM"}, {waveTagFloat, "float"}, {6, "A-law"},
        {7, "mu-law"}, {0x11, "IMA ADPCM"}, {0x31, "GSM 6.10"}, {0x50, "MPEG Layer I or II"},
        {waveTagExtensible, "extensible"}};
    const auto* const found =
        std::find_if(std::begin(names), std::end(names), [tag](const Name& name) { return name.tag == tag; });
    return found != std::end(names) ? found->name : "unknown";
}

EngineString DescribePcm(const WaveFormatEx& format)
{
    if (format.channels == 0) {
        return "states 0 channels";
    }
    if (format.bitsPerSample < 8) {
        return Join("has ", format.bitsPerSample, " bits per sample; the minimum is 8");
    }
    if (format.samplesPerSecond == 0 || format.samplesPerSecond > std::numeric_limits<int>::max()) {
        return Join("states a rate of ", format.samplesPerSecond, " Hz");
    }
    return {};
}

EngineString DescribeFormat(const WaveFormatEx& format)
{
    switch (format.formatTag) {
    case waveTagPcm:
        return DescribePcm(format);
    case waveTagAdpcm:
        return Join("holds Microsoft ADPCM that cannot be decoded: ", format.channels, " channels, ",
            format.samplesPerSecond, " Hz, blocks of ", format.blockAlign,
            " bytes, or coefficients that do not fit their chunk");
    case waveTagMpegLayer3:
        return "holds MPEG Layer III without a decodable frame";
    case waveTagFloat:
        return Join("holds ", format.bitsPerSample, "-bit float samples; only integer samples are supported");
    default:
        return Join("has the format tag ", format.formatTag, " (", NameFormatTag(format.formatTag),
            "); only PCM (1), Microsoft ADPCM (2) and MPEG Layer III (85) are supported");
    }
}

EngineString DescribeWave(SndFileHandle& handle)
{
    bool hasFormat = false;
    RiffWalk walk(handle);
    while (walk.Next()) {
        if (walk.Is("data")) {
            return hasFormat ? "is a damaged RIFF/WAVE file" : "has its data chunk before its format chunk";
        }
        if (!walk.Is("fmt ")) {
            continue;
        }
        if (walk.GetSize() < RiffWalk::minFormatBytes || walk.GetSize() > RiffWalk::maxFormatBytes) {
            return Join("has a format chunk of ", walk.GetSize(), " bytes; only ", RiffWalk::minFormatBytes,
                " to ", RiffWalk::maxFormatBytes, " are supported");
        }
        hasFormat = true;
        EngineString reason = DescribeFormat(walk.ReadFormat());
        if (!reason.empty()) {
            return reason;
        }
    }
    return hasFormat ? "has no data chunk" : "is a RIFF/WAVE file without a format chunk";
}

/// Identifies common non-sound content by its first bytes; null for all others.
const char* NameContent(std::string_view begin)
{
    struct Kind
    {
        std::string_view begin;
        const char* text;
    };
    static constexpr Kind kinds[] = {{"ID3", "has an ID3 tag in front of its MPEG frames"},
        {"OggS", "is an Ogg file"}, {"fLaC", "is a FLAC file"}, {"FORM", "is an AIFF file"},
        {"RIFX", "is a RIFX file (big-endian wave)"}, {"RF64", "is an RF64 file (wave beyond 4 GiB)"}};
    for (const Kind& kind : kinds) {
        if (begin.starts_with(kind.begin)) {
            return kind.text;
        }
    }
    return nullptr;
}

constexpr std::string_view unknownContent = "is neither a RIFF/WAVE file nor MPEG Layer III audio";

EngineString DescribeBareStream(const unsigned char* head, std::size_t bytes)
{
    constexpr std::size_t headerBytes = 4;
    if (bytes < headerBytes) {
        return Join("has only ", bytes, " bytes");
    }
    if (head[0] != 0xFF || (head[1] & 0xE0) != 0xE0) {
        return EngineString(unknownContent);
    }
    constexpr int layer3 = 1;
    const int version = head[1] >> 3 & 3;
    if ((head[1] >> 1 & 3) != layer3) {
        return "is MPEG audio of a layer other than III";
    }
    if (version == 0) {
        return "is MPEG-2.5 audio; only MPEG-1 and MPEG-2 are supported";
    }
    return "begins like MPEG Layer III but has no decodable frame";
}

} // namespace

EngineString DescribeRefusal(SndFileHandle& handle)
{
    std::array<char, 12> head{};
    const auto bytes = static_cast<std::size_t>(handle.ReadAt(head.data(), static_cast<int>(head.size()), 0));
    if (const char* const known = NameContent({head.data(), bytes})) {
        return known;
    }
    if (RiffWalk(handle).IsWave()) {
        return DescribeWave(handle);
    }
    return DescribeBareStream(reinterpret_cast<const unsigned char*>(head.data()), bytes);
}

EngineString DescribeRefusal(const WaveFormatEx* format, const void* data, unsigned long bytes)
{
    if (format == nullptr) {
        return "has no format";
    }
    if (format->formatTag != waveTagPcm) {
        return Join("has the format tag ", format->formatTag, " (", NameFormatTag(format->formatTag),
            "); only PCM (1) is supported in memory");
    }
    EngineString reason = DescribePcm(*format);
    if (!reason.empty()) {
        return reason;
    }
    return data == nullptr ? Join("is null with a size of ", bytes, " bytes")
                           : Join("has ", bytes, " bytes; the size must be below 4 GiB");
}

} // namespace Quon
