#include "harmonet/files/SndFile.h"

#include "harmonet/engine/Messages.h"
#include "harmonet/files/BufferOwner.h"
#include "harmonet/files/Refusal.h"
#include "harmonet/files/RiffWalk.h"
#include "harmonet/files/SndFileAdpcm.h"
#include "harmonet/files/SndFileCache.h"
#include "harmonet/files/SndFileHandle.h"
#include "harmonet/files/SndFileWav.h"
#include "harmonet/files/SndNode.h"
#include "harmonet/files/WaveProbe.h"
#include "harmonet/files/mpeg/SndFileMP3.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

namespace Quon
{

namespace
{

/// One use of a shared open file, released at the end of the scope unless a reader has taken it.
class HandleUse
{
public:
    HandleUse(SndFileCache& newCache, SndFileHandle* newHandle)
        : cache(newCache)
        , handle(newHandle)
    {
    }
    ~HandleUse() { cache.Release(handle); }
    HandleUse(const HandleUse&) = delete;
    HandleUse& operator=(const HandleUse&) = delete;

    SndFileHandle* Get() const { return handle; }
    void HandOver() { handle = nullptr; }

private:
    SndFileCache& cache;
    SndFileHandle* handle;
};

/// Opens a reader with `open`. If that returns false or throws, the caller keeps the arguments of `open`.
/// Returns the reader, or null.
template<class Open>
SndFile* OpenReader(std::unique_ptr<SndFile> file, void (SndFile::*abandon)(), Open open)
{
    if (file == nullptr) {
        return nullptr;
    }
    try {
        if (open(*file)) {
            return file.release();
        }
    }
    catch (...) {
        (file.get()->*abandon)();
        throw;
    }
    (file.get()->*abandon)();
    return nullptr;
}

std::unique_ptr<SndFile> MakeReader(int fileType)
{
    switch (fileType) {
    case SndFile::FileWav:
        return std::make_unique<SndFileWav>();
    case SndFile::FileAdpcm:
        return std::make_unique<SndFileAdpcm>();
    case SndFile::FileMP3:
        return std::make_unique<SndFileMP3>();
    default:
        return nullptr;
    }
}

/// Detects the file type from the content.
int Probe(SndFileHandle* handle)
{
    // Both probes need the format tag, and a file can hold millions of chunks before it.
    const int formatTag = FindFormatTag(*handle);
    const int waveType = ProbeTag(formatTag);
    return waveType != SndFile::FileNone ? waveType : ProbeMpeg(handle, formatTag);
}

} // namespace

SndFileCache* SndFile::sndFileCache = nullptr;

SndFile* SndFile::OpenFile(const PString& substName, const PString& fileName)
{
    if (sndFileCache == nullptr) {
        Report(MessageLevel::Error, "sound file '", fileName,
            "' cannot be opened: no sound system and no SndFileService is running");
        return nullptr;
    }
    HandleUse use(*sndFileCache, sndFileCache->Acquire(substName, fileName));
    if (use.Get() == nullptr) {
        return nullptr;
    }
    SndFile* const file = OpenReader(MakeReader(Probe(use.Get())), &SndFile::Abandon,
        [&use](SndFile& reader) { return reader.OpenHandle(use.Get()); });
    if (file != nullptr) {
        use.HandOver();
    }
    else if (Messages::AreWanted()) {
        Report(MessageLevel::Error, "sound file '", fileName, "' ", DescribeRefusal(*use.Get()));
    }
    return file;
}

SndFile* SndFile::OpenFile(SndNode* node)
{
    return OpenReader(
        MakeReader(node->fileType), &SndFile::Abandon, [node](SndFile& reader) { return reader.Open(node); });
}

SndFile* SndFile::OpenFile(void* data, unsigned long size, WaveFormatEx* format)
{
    auto file = std::make_unique<SndFileWav>();
    if (ProbeFormat(format) == FileWav && file->OpenMemory(data, size, format)) {
        return file.release();
    }
    if (Messages::AreWanted()) {
        Report(MessageLevel::Error, "a block of memory ", DescribeRefusal(format, data, size));
    }
    return nullptr;
}

void SndFile::SetSndFileCache(SndFileCache* cache)
{
    sndFileCache = cache;
}

SndFile::SndFile() = default;

SndFile::~SndFile()
{
    SndFile::CloseFile(0, nullptr);
}

bool SndFile::Open(SndNode* newNode)
{
    static_cast<SoundFormat&>(*this) = newNode->format;
    fileType = newNode->fileType;
    size = static_cast<std::uint32_t>(newNode->size);
    data = newNode->data;
    node = newNode;
    return true;
}

void SndFile::CloseFile(unsigned int soundID, Sound* owner)
{
    next = nullptr;
    if (handle != nullptr) {
        if (sndFileCache != nullptr) {
            sndFileCache->Release(handle);
        }
        handle = nullptr;
    }
    // Clear everything before the notification: a handler may call this object again.
    unsigned char* const block = data;
    SndNode* const usedNode = node;
    Abandon();
    if (usedNode != nullptr) {
        --usedNode->useCount;
        if (!usedNode->cached && usedNode->useCount < 1) {
            delete usedNode;
        }
    }
    else if (!userMemory) {
        Alloc::Delete(block);
    }
    else if (block != nullptr && owner != nullptr) {
        NotifyBufferFree(*owner, soundID, block);
    }
}

bool SndFile::TakeHandle(SndFileHandle* newHandle)
{
    CloseFile(0, nullptr);
    if (!newHandle->GetFile().IsOpen()) {
        return false;
    }
    size = static_cast<std::uint32_t>(newHandle->GetFile().Size());
    handle = newHandle;
    return true;
}

void SndFile::Abandon()
{
    handle = nullptr;
    node = nullptr;
    fileType = FileNone;
    size = 0;
    data = nullptr;
    loopStart = 0;
    loopEnd = 0;
}

unsigned char* SndFile::Load()
{
    if (size == 0 || handle == nullptr || data != nullptr) {
        return data;
    }
    // The size is only stated by the file: do not allocate memory before checking it.
    const std::uint64_t end = std::uint64_t{dataOffset} + size;
    if (size > static_cast<std::uint32_t>(std::numeric_limits<int>::max()) ||
        end > handle->GetFile().Size()) {
        return nullptr;
    }
    auto* const block = static_cast<unsigned char*>(Alloc::New(size));
    const int bytes = static_cast<int>(size);
    if (handle->ReadAt(block, bytes, dataOffset) != bytes) {
        Alloc::Delete(block);
        return nullptr;
    }
    data = block;
    userMemory = false;
    if (sndFileCache != nullptr) {
        sndFileCache->Release(handle);
    }
    handle = nullptr;
    return data;
}

unsigned char* SndFile::CopyData(unsigned long& bytes) const
{
    if (handle == nullptr) {
        return nullptr;
    }
    const unsigned long fileBytes = handle->GetFile().Size();
    bytes = std::min<unsigned long>(size, fileBytes - std::min<unsigned long>(dataOffset, fileBytes));
    if (bytes > static_cast<unsigned long>(std::numeric_limits<int>::max())) {
        return nullptr;
    }
    // Allocate at least one byte, since null means failure.
    auto* const block =
        static_cast<unsigned char*>(Alloc::New(static_cast<unsigned int>(std::max(bytes, 1UL))));
    const int count = static_cast<int>(bytes);
    if (handle->ReadAt(block, count, dataOffset) != count) {
        Alloc::Delete(block);
        return nullptr;
    }
    return block;
}

void SndFile::StepBack(int samples)
{
    if (samples <= 0) {
        return;
    }
    const int target = std::max(currentSample - samples, 0);
    Rewind();
    SkipSamples(target);
}

void SndFile::SeekTo(int sample)
{
    if (sample < currentSample) {
        Rewind();
    }
    SkipSamples(sample - currentSample);
}

bool SndFile::SetLoopRegion(int start, int end)
{
    const int last = end > 0 && end < soundSamples ? end : soundSamples;
    const bool isValid = start >= 0 && end >= 0 && (start < last || (start == 0 && end == 0));
    loopStart = isValid ? start : 0;
    loopEnd = isValid && last < soundSamples ? last : 0;
    return isValid;
}

void SndFile::RewindLoop()
{
    if (loopStart > 0) {
        SeekTo(loopStart);
    }
    else {
        Rewind();
    }
}

int SndFile::WrapToLoop(std::int64_t position) const
{
    const int end = GetLoopEnd();
    const int passLength = end - loopStart;
    if (position >= end && passLength > 0) {
        position = loopStart + (position - end) % passLength;
    }
    return ClampSamples(static_cast<std::uint64_t>(std::max<std::int64_t>(position, 0)));
}

int SndFile::Read(unsigned char* buffer, int bytes, int position)
{
    if (size == 0 || bytes <= 0) {
        return 0;
    }
    const std::uint64_t start = static_cast<std::uint32_t>(position);
    if (data != nullptr) {
        if (start >= size) {
            return 0;
        }
        const auto count = std::min<std::uint64_t>(size - start, static_cast<std::uint64_t>(bytes));
        std::memcpy(buffer, data + start, count);
        return static_cast<int>(count);
    }
    // Files end below 2 GiB, and an unsigned long may have 32 bits.
    const std::uint64_t offset = std::uint64_t{dataOffset} + start;
    if (handle == nullptr || offset > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max())) {
        return 0;
    }
    return handle->ReadAt(buffer, bytes, static_cast<unsigned long>(offset));
}

PString SndFile::GetFileName() const
{
    if (node != nullptr) {
        return node->fileName;
    }
    return handle != nullptr ? handle->GetFileName() : PString();
}

void SndFile::Add(SndFile* file)
{
    SndFile* last = this;
    while (last->next != nullptr) {
        last = last->next;
    }
    last->next = file;
}

int SndFile::GetQueueLength()
{
    int length = 0;
    for (const SndFile* file = next; file != nullptr; file = file->next) {
        ++length;
    }
    return length;
}

void SndFile::DeleteQueue(unsigned int soundID, Sound* owner)
{
    // Cut the chain off first and reverse it: the last file is deleted first, and a file that an owner
    // appends in response follows this file and not one about to be deleted.
    SndFile* reversed = nullptr;
    while (next != nullptr) {
        SndFile* const file = next;
        next = file->next;
        file->next = reversed;
        reversed = file;
    }
    while (reversed != nullptr) {
        SndFile* const file = reversed;
        reversed = file->next;
        file->CloseFile(soundID, owner);
        delete file;
    }
}

int SndFile::ClampSamples(std::uint64_t samples)
{
    return static_cast<int>(std::min<std::uint64_t>(samples, std::numeric_limits<int>::max()));
}

std::uint32_t SndFile::CalcLength(int samples) const
{
    if (samples <= 0 || sampleFrequency <= 0) {
        return 0;
    }
    const std::uint64_t lengthMs = static_cast<std::uint64_t>(samples) * 1000 / sampleFrequency;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(lengthMs, unknownLengthMs));
}

unsigned long SndFile::CalcRemainLength(Snd_FileType type) const
{
    if (fileType != type || currentSample >= soundSamples || sampleFrequency <= 0) {
        return 0;
    }
    const double samples = static_cast<double>(soundSamples) - currentSample;
    const double lengthMs = samples / sampleFrequency * 1000.0;
    return static_cast<unsigned long>(std::min<double>(lengthMs, unknownLengthMs));
}

unsigned long SndFile::CalcCurrentLength(Snd_FileType type) const
{
    return fileType == type ? CalcLength(currentSample) : 0;
}

} // namespace Quon
