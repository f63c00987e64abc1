#include "Mpg123Decoder.h"

#if defined(HARMONET_BENCH_MPG123)

#include <algorithm>
#include <cstring>
#include <mpg123.h>

namespace DecodeBench
{

namespace
{

class Mpg123Decoder : public PcmDecoder
{
public:
    explicit Mpg123Decoder(std::span<const unsigned char> newStream)
        : PcmDecoder("libmpg123")
        , stream(newStream)
    {
        mpg123_init();
        handle = mpg123_new(nullptr, nullptr);
        mpg123_param(handle, MPG123_REMOVE_FLAGS, MPG123_GAPLESS, 0);
        mpg123_param(handle, MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_IGNORE_INFOFRAME, 0);
        mpg123_replace_reader_handle(handle, &Mpg123Decoder::Read, &Mpg123Decoder::Seek, nullptr);
        opened = Reopen();
    }

    ~Mpg123Decoder() override
    {
        mpg123_delete(handle);
        mpg123_exit();
    }

    bool IsOpen() const { return opened; }

    void Restart() override { Reopen(); }

    int Decode(std::span<short> pcm) override
    {
        std::size_t bytes = 0;
        mpg123_read(handle, reinterpret_cast<unsigned char*>(pcm.data()), pcm.size() * sizeof(short), &bytes);
        return static_cast<int>(bytes / sizeof(short)) / channels;
    }

private:
    bool Reopen()
    {
        mpg123_close(handle);
        position = 0;
        long rate = 0;
        int encoding = 0;
        if (mpg123_open_handle(handle, this) != MPG123_OK ||
            mpg123_getformat(handle, &rate, &channels, &encoding) != MPG123_OK) {
            return false;
        }
        return encoding == MPG123_ENC_SIGNED_16;
    }

    static ssize_t Read(void* self, void* buffer, std::size_t bytes)
    {
        auto& decoder = *static_cast<Mpg123Decoder*>(self);
        const std::size_t count = std::min(bytes, decoder.stream.size() - decoder.position);
        std::memcpy(buffer, decoder.stream.data() + decoder.position, count);
        decoder.position += count;
        return static_cast<ssize_t>(count);
    }

    static off_t Seek(void*, off_t, int) { return -1; }

    std::span<const unsigned char> stream;
    std::size_t position = 0;
    mpg123_handle* handle = nullptr;
    int channels = 1;
    bool opened = false;
};

} // namespace

PcmDecoderPointer MakeMpg123Decoder(std::span<const unsigned char> stream)
{
    auto decoder = std::make_unique<Mpg123Decoder>(stream);
    return decoder->IsOpen() ? std::move(decoder) : nullptr;
}

} // namespace DecodeBench

#else

namespace DecodeBench
{

PcmDecoderPointer MakeMpg123Decoder(std::span<const unsigned char>)
{
    return nullptr;
}

} // namespace DecodeBench

#endif
