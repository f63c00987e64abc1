#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Builds valid and invalid wave files byte by byte.

using Bytes = std::vector<unsigned char>;

Bytes operator+(Bytes front, const Bytes& back);

Bytes Little16(long long number);
Bytes Little32(long long number);

/// The 16 bytes that every "fmt " chunk begins with.
Bytes FormatBytes(int tag, int channels, std::uint32_t rateHz, int blockAlign, int bits);
Bytes PcmFormat(int channels, std::uint32_t rateHz, int bits);
/// The ADPCM record with its coefficient pairs.
Bytes AdpcmFormat(
    int channels, std::uint32_t rateHz, int blockAlign, const std::vector<std::pair<int, int>>& pairs);

/// The seven usual pairs.
extern const std::vector<std::pair<int, int>> usualPairs;

/// One chunk with the pad byte after an odd content; `statedSize` is the value of its size field.
Bytes Chunk(const std::string& id, const Bytes& content, std::optional<std::uint32_t> statedSize = {});

/// The 12 bytes of a head and then the chunks.
Bytes Wave(const Bytes& chunks);

/// A plain PCM file; `statedSize` is the value of the size field of its data.
Bytes PcmWave(int channels, std::uint32_t rateHz, int bits, const Bytes& samples,
    std::optional<std::uint32_t> statedSize = {});

/// `count` bytes 1, 2, 3 ... that repeat after a prime number, so that no two places look alike.
Bytes Counting(std::size_t count);
