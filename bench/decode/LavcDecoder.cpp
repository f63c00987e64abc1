#include "LavcDecoder.h"

#if defined(HARMONET_BENCH_LAVC)

#include <algorithm>
#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace DecodeBench
{

namespace
{

class LavcDecoder : public PcmDecoder
{
public:
    explicit LavcDecoder(LavcStream newStream)
        : PcmDecoder("libavcodec " + newStream.codec)
        , stream(std::move(newStream))
        , packet(av_packet_alloc())
        , frame(av_frame_alloc())
    {
        av_log_set_level(AV_LOG_ERROR);
        Open();
    }

    ~LavcDecoder() override
    {
        avcodec_free_context(&context);
        av_frame_free(&frame);
        av_packet_free(&packet);
    }

    bool IsOpen() const { return context != nullptr; }

    void Restart() override
    {
        avcodec_flush_buffers(context);
        nextPacket = 0;
    }

    int Decode(std::span<short> pcm) override
    {
        int written = 0;
        while (nextPacket < stream.packets.size()) {
            if (pcm.size() - static_cast<std::size_t>(written * stream.channels) < maxFrameValues) {
                break;
            }
            if (!DecodePacket()) {
                continue;
            }
            Convert(pcm.data() + written * frame->ch_layout.nb_channels);
            written += frame->nb_samples;
        }
        return written;
    }

private:
    static constexpr std::size_t maxFrameValues = 8192;

    void Open()
    {
        const AVCodec* codec = avcodec_find_decoder_by_name(stream.codec.c_str());
        if (codec == nullptr) {
            return;
        }
        context = avcodec_alloc_context3(codec);
        context->thread_count = 1;
        av_channel_layout_default(&context->ch_layout, stream.channels);
        context->sample_rate = stream.sampleFrequency;
        context->block_align = stream.blockAlign;
        if (!stream.extraData.empty()) {
            const std::size_t bytes = stream.extraData.size();
            context->extradata = static_cast<std::uint8_t*>(av_mallocz(bytes + AV_INPUT_BUFFER_PADDING_SIZE));
            context->extradata_size = static_cast<int>(bytes);
            std::memcpy(context->extradata, stream.extraData.data(), bytes);
        }
        if (avcodec_open2(context, codec, nullptr) < 0) {
            avcodec_free_context(&context);
        }
    }

    /// The packets are not reference-counted, so that the decoder does not copy them.
    bool DecodePacket()
    {
        const auto& bytes = stream.packets[nextPacket++];
        packet->data = const_cast<std::uint8_t*>(bytes.data());
        packet->size = static_cast<int>(bytes.size());
        return avcodec_send_packet(context, packet) == 0 && avcodec_receive_frame(context, frame) == 0;
    }

    void Convert(short* pcm) const
    {
        const int count = frame->nb_samples;
        const int channels = frame->ch_layout.nb_channels;
        switch (frame->format) {
        case AV_SAMPLE_FMT_FLTP:
            if (channels == 2) {
                ConvertStereo(reinterpret_cast<const float*>(frame->data[0]),
                    reinterpret_cast<const float*>(frame->data[1]), count, pcm);
            }
            else {
                ConvertMono(reinterpret_cast<const float*>(frame->data[0]), count, pcm);
            }
            break;
        case AV_SAMPLE_FMT_S16P:
            for (int channel = 0; channel < channels; ++channel) {
                const auto* from = reinterpret_cast<const short*>(frame->data[channel]);
                for (int i = 0; i < count; ++i) {
                    pcm[i * channels + channel] = from[i];
                }
            }
            break;
        case AV_SAMPLE_FMT_S16:
            std::memcpy(pcm, frame->data[0], sizeof(short) * static_cast<std::size_t>(count * channels));
            break;
        default:
            break;
        }
    }

    /// A plain expression, which the compiler can vectorise.
    static short ToPcm(float value)
    {
        return static_cast<short>(std::min(std::max(value * 32767.0F, -32768.0F), 32767.0F));
    }

    static void ConvertStereo(
        const float* __restrict left, const float* __restrict right, int count, short* __restrict pcm)
    {
        for (int i = 0; i < count; ++i) {
            pcm[2 * i] = ToPcm(left[i]);
            pcm[2 * i + 1] = ToPcm(right[i]);
        }
    }

    static void ConvertMono(const float* __restrict from, int count, short* __restrict pcm)
    {
        for (int i = 0; i < count; ++i) {
            pcm[i] = ToPcm(from[i]);
        }
    }

    LavcStream stream;
    AVPacket* packet;
    AVFrame* frame;
    AVCodecContext* context = nullptr;
    std::size_t nextPacket = 0;
};

} // namespace

PcmDecoderPointer MakeLavcDecoder(LavcStream stream)
{
    auto decoder = std::make_unique<LavcDecoder>(std::move(stream));
    return decoder->IsOpen() ? std::move(decoder) : nullptr;
}

} // namespace DecodeBench

#else

namespace DecodeBench
{

PcmDecoderPointer MakeLavcDecoder(LavcStream)
{
    return nullptr;
}

} // namespace DecodeBench

#endif
