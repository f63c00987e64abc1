#pragma once

#include "harmonet/files/SndNode.h"
#include "harmonet/files/mpeg/SndFileMP3.h"

#include <memory>
#include <string>
#include <vector>

std::vector<unsigned char> ReadBytes(const std::string& path);
/// A stream of the folder streams/.
std::vector<unsigned char> ReadStream(const std::string& name);
/// Little-endian 16-bit values.
std::vector<int> ToValues(const std::vector<unsigned char>& pcm);

/// A reader on a stream that lies in memory, as in the data cache.
class MemoryStream
{
public:
    explicit MemoryStream(std::vector<unsigned char> newBytes);
    ~MemoryStream();

    /// Null if the reader refused the stream.
    Quon::SndFileMP3* Get() const { return file.get(); }

    /// Reads on to the end in calls of so many sample frames; gives the values of all channels. Every call is
    /// watched: it may touch no byte behind what a caller has by the format at open and before the call.
    std::vector<int> ReadAll(int samplesPerCall = 1152);
    /// The same for one call, which `delivered` tells the result of.
    std::vector<int> ReadOnce(int samples, int& delivered);

private:
    std::vector<unsigned char> bytes;
    Quon::SndNode node;
    std::unique_ptr<Quon::SndFileMP3> file;
    int channelsAtOpen = 0;
};
