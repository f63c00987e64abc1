#include "tools/harmonet/WaveWriter.h"

#include "harmonet/engine/HostFile.h"
#include "harmonet/files/WaveHeader.h"
#include "tools/harmonet/Output.h"

#include <cerrno>

namespace Tool
{

WaveWriter::WaveWriter(const OutputFile& newOutput, const Quon::SoundFormat& newFormat)
    : output(newOutput)
    , format(newFormat)
    , file(Quon::OpenHostFile(newOutput.GetPath().c_str(), "wb"))
{
    // The header is written last, when the lengths are known.
    if (!file || std::fseek(file.get(), static_cast<long>(Quon::waveHeaderBytes), SEEK_SET) != 0) {
        Fail(errno);
    }
}

void WaveWriter::Write(const unsigned char* pcm, std::size_t bytes)
{
    dataBytes += bytes;
    if (dataBytes > Quon::maxWaveDataBytes) {
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
    const auto header = Quon::MakeWaveHeader(format, dataBytes);
    WriteAll(header.data(), header.size());
    if (std::fflush(file.get()) != 0) {
        Fail(errno);
    }
    file.reset();
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
