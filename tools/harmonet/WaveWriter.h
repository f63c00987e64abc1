#pragma once

#include "harmonet/output/SoundFormat.h"
#include "tools/harmonet/OutputFile.h"

#include <cstdint>
#include <cstdio>
#include <memory>

namespace Tool
{

/// Writes PCM into a new RIFF/WAVE file.
class WaveWriter
{
public:
    /// `newOutput` must outlive this object. All functions throw a ToolError if writing fails.
    WaveWriter(const OutputFile& newOutput, const Quon::SoundFormat& newFormat);
    WaveWriter(const WaveWriter&) = delete;
    WaveWriter& operator=(const WaveWriter&) = delete;

    /// Appends interleaved PCM in the format of the file.
    void Write(const unsigned char* pcm, std::size_t bytes);

    /// Writes the header, with the lengths, and closes the file.
    void Finish();

private:
    struct Close
    {
        void operator()(std::FILE* opened) const { std::fclose(opened); }
    };

    void WriteAll(const void* bytes, std::size_t count);
    [[noreturn]] void Fail(int reason) const;

    const OutputFile& output;
    Quon::SoundFormat format;
    std::unique_ptr<std::FILE, Close> file; ///< Null once finished.
    std::uint64_t dataBytes = 0;
};

} // namespace Tool
