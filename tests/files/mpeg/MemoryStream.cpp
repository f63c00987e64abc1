#include "MemoryStream.h"

#include "harmonet/files/SndFileCache.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace Quon;

Bytes ReadStream(const std::string& name)
{
    return ReadBytes(std::string(MPEG_STREAMS) + "/" + name);
}

Bytes ReadFrames(const std::string& name, int frameCount)
{
    Bytes stream = ReadStream("syntax/" + name + ".mp3");
    std::size_t end = 0;
    for (; frameCount > 0; --frameCount) {
        const FrameHeader header = SplitFrameHeader(LoadFrameHeader(stream.data() + end));
        end += static_cast<std::size_t>(FrameBytes(header) + frameHeaderBytes);
    }
    EXPECT_LE(end, stream.size());
    stream.resize(end);
    return stream;
}

Bytes MakeSilentFrame(int mode, int mainDataBegin)
{
    const auto byte = [](int value) { return static_cast<unsigned char>(value); };
    Bytes frame = {0xFF, 0xFB, 0x90, byte(mode << 6), byte(mainDataBegin >> 1), byte(mainDataBegin << 7)};
    frame.resize(417);
    return frame;
}

std::vector<int> ToValues(const Bytes& pcm)
{
    std::vector<int> values;
    for (std::size_t i = 0; i + 1 < pcm.size(); i += 2) {
        values.push_back(static_cast<short>(pcm[i] | pcm[i + 1] << 8));
    }
    return values;
}

void ExpectSameSound(const std::vector<int>& decoded, const std::vector<int>& expected, std::size_t stride)
{
    ASSERT_EQ((decoded.size() + stride - 1) / stride, expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_LE(std::abs(decoded[stride * i] - expected[i]), 1) << "value " << stride * i;
    }
}

MemoryStream::MemoryStream(const Bytes& newBytes, bool byStandard)
    : bytes(newBytes)
    , file(std::make_unique<SndFileMP3>())
{
    node.fileType = SndFile::FileMP3;
    node.format.SetFormat(2, 44100, 0, 2);
    node.data = bytes.data();
    node.size = bytes.size();
    node.cached = true;
    node.useCount = 1;
    SndFileCache openFiles;
    openFiles.SetMpegStandard(byStandard);
    SndFileCache* const before = SndFile::sndFileCache;
    SndFile::SetSndFileCache(&openFiles);
    if (!file->Open(&node)) {
        file.reset();
    }
    SndFile::SetSndFileCache(before);
}

MemoryStream::~MemoryStream()
{
    file.reset();
    node.data = nullptr;
}

std::vector<int> MemoryStream::ReadOnce(int samples)
{
    constexpr std::size_t guardBytes = 64;
    constexpr unsigned char guard = 0xA5;
    Bytes buffer(static_cast<std::size_t>(samples * 2 * file->GetChannels()) + guardBytes, guard);
    const int delivered = file->ReadSamples(buffer.data(), samples);
    EXPECT_LE(delivered, samples);
    EXPECT_EQ(Bytes(buffer.end() - guardBytes, buffer.end()), Bytes(guardBytes, guard));
    buffer.resize(2 * static_cast<std::size_t>(delivered) * static_cast<std::size_t>(file->GetChannels()));
    return ToValues(buffer);
}

std::vector<int> MemoryStream::ReadAll(int samplesPerCall)
{
    std::vector<int> all;
    std::vector<int> part;
    do {
        part = ReadOnce(samplesPerCall);
        all.insert(all.end(), part.begin(), part.end());
    } while (!part.empty());
    return all;
}

std::vector<int> DecodeAll(const Bytes& stream, int samplesPerCall, bool byStandard)
{
    MemoryStream file(stream, byStandard);
    return file.Get() != nullptr ? file.ReadAll(samplesPerCall) : std::vector<int>();
}
