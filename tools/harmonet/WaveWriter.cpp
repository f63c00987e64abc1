#include "tools/harmonet/WaveWriter.h"

#include "harmonet/engine/HostFile.h"
#include "tools/harmonet/Output.h"

#include <array>
#include <cerrno>
#include <string_view>

namespace Tool
{

namespace
{

constexpr int headBytes = 44;
/// The lengths in the head have 32 bits, and one of them counts the rest of the head too.
constexpr std::uint64_t maxDataBytes = 0xFFFFFFFF - headBytes;

class Head
{
public:
    void Text(std::string_view text)
    {
        for (const char letter : text) {
            bytes[used++] = static_cast<unsigned char>(letter);
        }
    }

    void Number(std::uint64_t value, int byteCount)
    {
        for (int i = 0; i < byteCount; ++i) {
            bytes[used++] = static_cast<unsigned char>(value >> (8 * i));
        }
    }

    const std::array<unsigned char, headBytes>& GetBytes() const { return bytes; }

private:
    std::array<unsigned char, headBytes> bytes{};
    std::size_t used = 0;
};

} // namespace

WaveWriter::WaveWriter(const OutputFile& newOutput, const Quon::SoundFormat& newFormat)
    : output(newOutput)
    , format(newFormat)
    , file(Quon::OpenHostFile(newOutput.GetPath().c_str(), "wb"))
{
    // The head comes last, when the lengths are known.
    if (!file || std::fseek(file.get(), headBytes, SEEK_SET) != 0) {
        Fail(errno);
    }
}

void WaveWriter::Write(const unsigned char* pcm, std::size_t bytes)
{
    dataBytes += bytes;
    if (dataBytes > maxDataBytes) {
        throw ToolError("the sound is too long for a wave file", ExitCode::BadInput);
    }
    WriteAll(pcm, bytes);
}

void WaveWriter::Finish()
{
    // Chunks have an even number of bytes.
    constexpr unsigned char padding = 0;
    if (dataBytes % 2 != 0) {
        WriteAll(&padding, 1);
    }
    if (std::fseek(file.get(), 0, SEEK_SET) != 0) {
        Fail(errno);
    }
    WriteHead();
    if (std::fflush(file.get()) != 0) {
        Fail(errno);
    }
    file.reset();
}

void WaveWriter::WriteHead()
{
    constexpr int fmtBytes = 16;
    constexpr int tagPcm = 1;
    const auto channels = static_cast<std::uint64_t>(format.GetChannels());
    const auto sampleBytes = static_cast<std::uint64_t>(format.GetBytesPerSample());
    const auto rateHz = static_cast<std::uint64_t>(format.GetSampleFrequency());
    Head head;
    head.Text("RIFF");
    head.Number(headBytes - 8 + dataBytes + dataBytes % 2, 4);
    head.Text("WAVEfmt ");
    head.Number(fmtBytes, 4);
    head.Number(tagPcm, 2);
    head.Number(channels, 2);
    head.Number(rateHz, 4);
    head.Number(rateHz * channels * sampleBytes, 4);
    head.Number(channels * sampleBytes, 2);
    head.Number(8 * sampleBytes, 2);
    head.Text("data");
    head.Number(dataBytes, 4);
    WriteAll(head.GetBytes().data(), headBytes);
}

void WaveWriter::WriteAll(const void* bytes, std::size_t count)
{
    if (std::fwrite(bytes, 1, count, file.get()) != count) {
        Fail(errno);
    }
}

void WaveWriter::Fail(int reason) const
{
    throw WriteError(output.GetShown(), reason);
}

} // namespace Tool
