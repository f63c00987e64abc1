#include "MemoryStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

using namespace Quon;

std::vector<unsigned char> ReadBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<unsigned char> ReadStream(const std::string& name)
{
    return ReadBytes(std::string(MPEG_STREAMS) + "/" + name);
}

std::vector<int> ToValues(const std::vector<unsigned char>& pcm)
{
    std::vector<int> values;
    for (std::size_t i = 0; i + 1 < pcm.size(); i += 2) {
        values.push_back(static_cast<short>(pcm[i] | pcm[i + 1] << 8));
    }
    return values;
}

MemoryStream::MemoryStream(std::vector<unsigned char> newBytes)
    : bytes(std::move(newBytes))
    , file(std::make_unique<SndFileMP3>())
{
    node.fileType = SndFile::FileMP3;
    node.format.SetFormat(2, 44100, 0, 2);
    node.data = bytes.data();
    node.size = bytes.size();
    node.cached = true;
    node.useCount = 1;
    if (!file->Open(&node)) {
        file.reset();
    }
    else {
        channelsAtOpen = file->GetChannels();
    }
}

MemoryStream::~MemoryStream()
{
    file.reset();
    node.data = nullptr;
}

std::vector<int> MemoryStream::ReadOnce(int samples, int& delivered)
{
    constexpr std::size_t guardBytes = 64;
    constexpr unsigned char guard = 0xA5;
    const int channels = std::min(file->GetChannels(), channelsAtOpen);
    const std::size_t room = static_cast<std::size_t>(samples) * static_cast<std::size_t>(2 * channels);
    std::vector<unsigned char> buffer(room + guardBytes, guard);
    delivered = file->ReadSamples(buffer.data(), samples);
    EXPECT_LE(delivered, samples);
    EXPECT_TRUE(
        std::all_of(buffer.end() - guardBytes, buffer.end(), [](unsigned char b) { return b == guard; }));
    buffer.resize(static_cast<std::size_t>(2 * delivered * file->GetChannels()));
    return ToValues(buffer);
}

std::vector<int> MemoryStream::ReadAll(int samplesPerCall)
{
    std::vector<int> all;
    int delivered = 0;
    do {
        const std::vector<int> values = ReadOnce(samplesPerCall, delivered);
        all.insert(all.end(), values.begin(), values.end());
    } while (delivered > 0);
    return all;
}
