#include "fuzz/FuzzTarget.h"
#include "fuzz/game/Dice.h"
#include "harmonet/engine/File.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndFileCache.h"
#include "harmonet/files/SndNodeCache.h"
#include "harmonet/files/mpeg/SndFileMP3.h"
#include "tests/support/TempFolder.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace Quon
{

namespace
{

constexpr std::size_t mostBytes = 1 << 16;
constexpr std::size_t maxPcm = 1 << 20;
constexpr int wholeRead = 4096;

/// Everything that a reader returns up to the length of the sound.
struct Pcm
{
    std::vector<unsigned char> bytes;
    int sampleFrames = 0;
    /// Only complete reads: no bad header, no change of channels, no truncated end.
    bool isPlain = true;

    bool operator==(const Pcm& other) const
    {
        return bytes == other.bytes && sampleFrames == other.sampleFrames;
    }
};

int FrameBytes(const SndFile& file)
{
    return file.GetBytesPerSample() * file.GetChannels();
}

/// Returns whether the sample frames have a normal size. A header can state 65 535 channels.
bool IsOfOrdinarySize(const SndFile& file)
{
    return file.GetBytesPerSample() <= 4 && FrameBytes(file) <= 4096;
}

int Left(const SndFile& file)
{
    return std::max(file.GetSoundSamples() - file.GetCurrentSample(), 0);
}

/// Reads once into a buffer of exactly the requested size, so that AddressSanitizer detects the first byte
/// beyond it.
///
/// The position of ADPCM after a skip is only an expectation, which damaged data can break. `isExact` is then
/// false.
int ReadPiece(SndFile& file, int wanted, Pcm& pcm, bool isExact)
{
    const int frameBytes = FrameBytes(file);
    std::vector<unsigned char> buffer(
        static_cast<std::size_t>(wanted) * static_cast<std::size_t>(frameBytes));
    const int before = file.GetCurrentSample();
    const int given = file.ReadSamples(buffer.data(), wanted);
    Require(given >= 0 && given <= wanted, "a read returns at most the requested sample frames");
    Require(!isExact || file.GetCurrentSample() == before + given, "the position advances by what was read");
    pcm.isPlain = pcm.isPlain && given == wanted && FrameBytes(file) == frameBytes;
    buffer.resize(static_cast<std::size_t>(given) * static_cast<std::size_t>(FrameBytes(file)));
    pcm.bytes.insert(pcm.bytes.end(), buffer.begin(), buffer.end());
    pcm.sampleFrames += given;
    return given;
}

/// A call can return nothing at a bad header and continue after it in the next call. The end is therefore
/// reached after as many empty calls as there could be headers.
template<class Piece>
Pcm ReadAll(SndFile& file, std::size_t fileBytes, Piece piece)
{
    Pcm pcm;
    std::size_t emptyReads = 0;
    while (emptyReads <= fileBytes / 4 && pcm.bytes.size() < maxPcm && Left(file) > 0) {
        const int given = ReadPiece(file, std::min(piece(), Left(file)), pcm, true);
        emptyReads = given == 0 ? emptyReads + 1 : 0;
    }
    pcm.isPlain = pcm.isPlain && Left(file) == 0;
    return pcm;
}

/// A folder with the one file, and the list of open files. Created for each input, because a running sound
/// system uses another list.
class Workbench
{
public:
    Workbench()
    {
        File::AddRoot(owner, folder.GetPath().string().c_str());
        SndFile::SetSndFileCache(&openFiles);
    }
    ~Workbench()
    {
        SndFile::SetSndFileCache(nullptr);
        File::RemoveRoot(owner);
    }
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    void Write(FuzzBytes bytes) const
    {
        folder.Write("sound", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    std::unique_ptr<SndFile> Open() const { return std::unique_ptr<SndFile>(SndFile::OpenFile(owner, name)); }
    std::unique_ptr<SndFile> OpenCached(SndNodeCache& cache) const
    {
        return std::unique_ptr<SndFile>(cache.OpenSound(owner, name, 0));
    }
    void CheckClosed() const { Require(openFiles.GetCount() == 0, "no file stays open"); }

private:
    const PString owner{"fuzz"};
    const PString name{"sound"};
    TempFolder folder;
    SndFileCache openFiles;
};

class SoundFileCheck
{
public:
    explicit SoundFileCheck(FuzzBytes newBytes)
        : bytes(newBytes)
        , dice(Hash(newBytes))
    {
        bench.Write(bytes);
    }

    void Run()
    {
        CheckReads();
        CheckCache();
        bench.CheckClosed();
    }

private:
    static std::uint64_t Hash(FuzzBytes bytes)
    {
        Digest digest;
        digest.Add(bytes);
        return digest.Get();
    }

    // Never a single sample frame: at a change from one channel to two, that would be a mixture of both.
    int OddPiece() { return 2 + dice.Draw(dice.Chance(50) ? 8 : 3000); }

    void CheckReads()
    {
        const auto file = bench.Open();
        if (!file || !IsOfOrdinarySize(*file)) {
            return;
        }
        whole = ReadAll(*file, bytes.size(), [] { return wholeRead; });
        // The length must not depend on what has been read.
        const unsigned long length = file->GetSoundLength();
        file->Rewind();
        Require(file->GetCurrentSample() == 0, "a rewound reader is at 0");
        const Pcm pieces = ReadAll(*file, bytes.size(), [this] { return OddPiece(); });
        Require(pieces == whole, "odd pieces give the same as one read");
        Require(file->GetSoundLength() == length, "the length does not change");
        CheckSkips(*file);
        ReadBeyond(*file);
    }

    void CheckCache()
    {
        constexpr unsigned long cacheBytes = 1 << 22;
        SndNodeCache cache;
        cache.SetLimit(cacheBytes);
        const auto loaded = bench.OpenCached(cache);
        const auto cached = bench.OpenCached(cache);
        Require((loaded == nullptr) == (cached == nullptr), "a cached file opens as a file does");
        if (!loaded || !IsOfOrdinarySize(*loaded)) {
            return;
        }
        Require(ReadAll(*loaded, bytes.size(), [] { return wholeRead; }) == whole,
            "a file loaded into the cache gives the same as the file");
        Require(ReadAll(*cached, bytes.size(), [this] { return OddPiece(); }) == whole,
            "cached bytes give the same as the file");
        CheckSkips(*cached);
        cached->CloseFile(0, nullptr);
        loaded->CloseFile(0, nullptr);
        Require(cache.GetFreeBytes() <= cacheBytes, "the budget is kept");
    }

    /// Seeks to a random position, or to the start of a loop region.
    void Seek(SndFile& file)
    {
        const int samples = file.GetSoundSamples();
        const int target = dice.Draw(samples);
        if (dice.Chance(50)) {
            file.SeekTo(target);
        }
        else {
            Require(file.SetLoopRegion(target, 0), "a region that begins inside the sound is not empty");
            file.RewindLoop();
            file.SetLoopRegion(0, 0);
        }
        Require(file.GetCurrentSample() >= 0, "a position is not negative");
        Require(!whole.isPlain || file.GetCurrentSample() == target,
            "a seek inside the sound reaches its target");
    }

    /// Alternates skips and reads, with occasional seeks. The amount of data must not change, nor the PCM of
    /// formats that can be compared sample by sample. MPEG frames after a skip lack the bit reservoir.
    void CheckSkips(SndFile& file)
    {
        file.Rewind();
        Pcm read;
        const auto frameBytes = static_cast<std::size_t>(FrameBytes(file));
        for (int turns = 0; turns < 64 && Left(file) > 0; ++turns) {
            if (dice.Chance(20)) {
                Seek(file);
            }
            const int before = file.GetCurrentSample();
            const int wanted = std::min(dice.Draw(dice.Chance(50) ? 16 : 4000), Left(file));
            const int skipped = file.SkipSamples(wanted);
            Require(skipped >= 0 && skipped <= wanted, "a skip skips at most the requested sample frames");
            Require(file.GetCurrentSample() == before + skipped, "the position advances by what was skipped");
            const auto start = static_cast<std::size_t>(file.GetCurrentSample()) * frameBytes;
            const std::size_t held = read.bytes.size();
            const int given = ReadPiece(file, std::min(OddPiece(), Left(file)), read, whole.isPlain);
            if (!whole.isPlain) {
                continue;
            }
            Require(skipped == wanted, "a skip inside the sound is complete");
            Require(given > 0 || Left(file) == 0, "a read after a skip is not empty");
            if (file.FileType() == SndFile::FileMP3) {
                continue;
            }
            Require(std::equal(read.bytes.begin() + static_cast<std::ptrdiff_t>(held), read.bytes.end(),
                        whole.bytes.begin() + static_cast<std::ptrdiff_t>(start)),
                "a read after a skip gives the data at that position");
        }
    }

    // The reader may or may not continue there, but it must stay inside its data and the caller's buffer.
    void ReadBeyond(SndFile& file)
    {
        Pcm beyond;
        for (int i = 0; i < 4; ++i) {
            ReadPiece(file, OddPiece(), beyond, false);
        }
        file.SkipSamples(1 << 30);
        ReadPiece(file, OddPiece(), beyond, false);
    }

    const Workbench bench;
    const FuzzBytes bytes;
    SeededDice dice;
    Pcm whole;
};

} // namespace

void FuzzSoundFile(FuzzBytes bytes)
{
    // The tables of the MPEG decoder exist as long as any reader exists.
    static const SndFileMP3 keepsTables;
    SoundFileCheck(bytes.first(std::min(bytes.size(), mostBytes))).Run();
}

} // namespace Quon
