#include "OurDecoder.h"

#include "harmonet/files/SndNode.h"

namespace DecodeBench
{

namespace
{

class OurDecoder : public PcmDecoder
{
public:
    OurDecoder(Bytes& file, Quon::SndFile::Snd_FileType type, const Quon::SoundFormat& format, void* nodeInfo)
        : PcmDecoder("harmonet")
    {
        node.fileType = type;
        node.format = format;
        node.data = file.data();
        node.size = file.size();
        node.nodeInfo = nodeInfo;
        node.useCount = 1;
        node.cached = true;
        reader.reset(Quon::SndFile::OpenFile(&node));
    }

    ~OurDecoder() override
    {
        reader.reset();
        node.data = nullptr;
    }

    bool IsOpen() const { return reader != nullptr; }
    void Restart() override { reader->Rewind(); }
    int Decode(std::span<short> pcm) override
    {
        const int room = static_cast<int>(pcm.size()) / reader->GetChannels();
        return reader->ReadSamples(reinterpret_cast<unsigned char*>(pcm.data()), room);
    }

private:
    Quon::SndNode node;
    std::unique_ptr<Quon::SndFile> reader;
};

} // namespace

PcmDecoderPointer MakeOurDecoder(
    Bytes& file, Quon::SndFile::Snd_FileType type, const Quon::SoundFormat& format, void* nodeInfo)
{
    auto decoder = std::make_unique<OurDecoder>(file, type, format, nodeInfo);
    return decoder->IsOpen() ? std::move(decoder) : nullptr;
}

} // namespace DecodeBench
