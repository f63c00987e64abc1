#pragma once

#include "harmonet/files/SndFile.h"
#include "harmonet/files/mpeg/BitReader.h"
#include "harmonet/files/mpeg/DecoderKernels.h"
#include "harmonet/files/mpeg/DecoderTables.h"
#include "harmonet/files/mpeg/FrameMarks.h"
#include "harmonet/files/mpeg/FrameParser.h"
#include "harmonet/files/mpeg/SideInfo.h"

namespace Quon
{

/// The reader of MPEG audio Layer III, MPEG-1 and MPEG-2 (low sampling frequencies), raw or in a RIFF/WAVE
/// file with format tag 85. It decodes one MPEG frame at a time into its own buffer, from which ReadSamples()
/// copies. Ownership and threads as for every SndFile; decoding does not allocate. One object takes less than
/// 24 KB, including its buffers, plus the tables shared by all objects. The first object builds those and the
/// last one frees them, without a lock: objects must not be created or deleted concurrently.
///
/// *Broken streams.* Bytes that are not part of an MPEG frame are skipped. A header with an unplayable field,
/// or data that end too early, end a call; the next call continues after them. An MPEG frame whose bit
/// reservoir is missing, as at the start of a stream cut out of a longer one, fades out the previous sound
/// and is silent, and its own bytes are added to the reservoir. CRCs are not verified. Corrupt main data
/// cause noise, limited to its granule by the bit counts of the side information.
///
/// *A change of channels or rate in mid-stream.* The format is that of the samples delivered last. A change
/// of channels ends a call of ReadSamples(), so one call never mixes layouts; the next call begins with the
/// new layout. A call writes at most as many bytes as `samples` sample frames take in the format before the
/// call, and thus delivers fewer sample frames than requested if channels are added. If there is no room for
/// even one sample frame, because a single mono sample frame was requested, the two channels are mixed into
/// one. Only 0 means the end. A change of the rate alone does not end a call. After opening, the format is
/// that of the first MPEG frame, or of the last one if the MPEG frames had to be counted.
///
/// *Rules.* Where this library's decoding rules differ from those of the standards, a reader uses the
/// library's rules, or those of the standards if SndFileCache::SetMpegStandard() has selected them when it is
/// opened.
///
/// *Layout of the buffers.* They are internal and arranged for vector arithmetic: `overlapBuffer` and the
/// hybrid output by time slot and then subband, with the frequency inversion applied; `synthBuffer` as 15
/// past time slots of 32 cosine sums, of which the 64 matrixing rows are signed copies.
class HARMONET_API SndFileMP3 : public SndFile
{
public:
    SndFileMP3();
    SndFileMP3(const SndFileMP3&) = delete;
    SndFileMP3& operator=(const SndFileMP3&) = delete;
    ~SndFileMP3() override;

    /// Returns false: only PCM can be played from the caller's memory.
    bool OpenMemory(void* newData, unsigned long newSize, WaveFormatEx* format) override;
    bool Open(SndNode* newNode) override;
    /// Reads all MPEG frame headers to count the sample frames, unless a container states their number. The
    /// count includes a truncated last MPEG frame, which is not delivered.
    bool OpenHandle(SndFileHandle* newHandle) override;
    /// Returns null: the format in the node is sufficient.
    void* CreateNodeInfo() override;
    void CloseFile(unsigned int soundID, Sound* owner) override;
    int ReadSamples(unsigned char* buffer, int samples) override;
    /// Skips whole MPEG frames by reading only their headers. The count is exact, also beyond the sound
    /// samples. After a long skip the output is wrong for a moment, since the skipped MPEG frames do not
    /// update the bit reservoir and the filters.
    int SkipSamples(int samples) override;
    void Rewind() override;
    unsigned long GetRemainLength() override;
    unsigned long GetCurrentLength() override;
    /// Within about the last decoded second it returns to an MPEG frame with a known position and decodes a
    /// few MPEG frames, so that the output is correct at once.
    void StepBack(int samples) override;
    /// Reads the MPEG frame headers from the start and decodes as many MPEG frames before the position as the
    /// bit reservoir and the filters need; at the lowest bit rates a few more MPEG frames can differ.
    void SeekTo(int sample) override;

    /// Makes all objects decode with these kernels, for comparisons; null selects the fastest ones again.
    /// Must not be called while any object decodes.
    static void UseKernels(const DecoderKernels* chosen);

protected:
    /// Reads from an open file use a window that is read at once: an MPEG frame is read in two consecutive
    /// small pieces, each of which would cost two system calls.
    int Read(unsigned char* buffer, int bytes, int position) override;

private:
    static constexpr int crcBytes = 2;
    static constexpr int overlapPerChannel = subbandCount * slotsPerGranule;
    static constexpr int frameBufferBytes = 2308;
    static constexpr int maxFrameSamples = 1152;
    static constexpr int pcmBufferBytes = maxFrameSamples * maxChannels * 2;
    /// A header with its CRC and side information, which are read at once.
    static constexpr int headBytesRead = frameHeaderBytes + crcBytes + maxSideInfoBytes;

    bool ParseContainer();
    void TakeContainerFormat(unsigned int chunkBytes, const WaveFormatEx& format);
    void AllocateBuffers();
    void FreeBuffers();
    /// The common end of both opening operations.
    void FinishOpen();
    void ChooseRules();
    void CountSamples();

    /// Finds and parses the next MPEG frame header at `readPosition` and sets the format from it.
    bool ReadHeader();
    /// Advances to the next sync pattern; returns false at the end of the data.
    bool FindSync();
    /// Decodes the next MPEG frame, whose first sample frame is number `sample` of the file, into
    /// `pcmBuffer`. After a failure the buffer has nothing to deliver.
    bool DecodeFrame(int sample);
    /// DecodeFrame() for ReadSamples(). With `keepChannels` a change of channels counts as a failure; the
    /// MPEG frame is kept in `pcmBuffer` for the next call.
    bool DecodeNext(bool keepChannels);
    /// Delivers one stereo sample frame, mixed to the one channel for which the caller has room.
    int DeliverMixed(unsigned char* buffer);
    bool ReadFrame();
    /// Assembles the side information, the reservoir and the new main data in `frameBuffer`.
    bool FillFrameBuffer(const unsigned char* sideInfoBytes, int reservoirHeld);
    void DecodeGranule(int granule);
    /// Skips one MPEG frame by its header if it is no longer than `samples`; returns its length.
    int SkipFrame(int samples);
    /// Decodes until `target` is in `pcmBuffer`, starting up to `warmUpFrames` MPEG frames before it, at a
    /// known position.
    bool DecodeTo(int target, int warmUpFrames);
    /// Reads the headers from the start to the MPEG frame that contains `target`, and stores the positions.
    /// Returns false if the data end before it.
    bool WalkTo(int target);
    /// Sets the format to that of the samples in `pcmBuffer`.
    void FollowHeader();

    void ParseSideInfo();
    void ReadScaleFactors(int granule, int channel);
    void DecodeSpectrum(float* xr, GranuleInfo* info, int channel);
    unsigned GetBits(int n) { return reader.GetBits(n); }
    void UngetBits(int n) { reader.UngetBits(n); }
    void Stereo(float* xr, GranuleInfo* first);
    void AliasReduction(float* xr, GranuleInfo* info, int channel);
    void Hybrid(float* out, float* in, GranuleInfo* info, int channel);
    /// All time slots of a granule at once, to 576 samples with full scale at 1.0.
    void Synthesis(float* subbands, int channel, float* samples);
    void StorePcm(const float* samples, unsigned char* out) const;

    static int livingObjects;
    static DecoderTables* tables;
    static const DecoderKernels* kernels;

    int readPosition = 0; ///< Position of the next byte to read, from the first data byte.
    int previousLength = 0; ///< Bytes that `frameBuffer` held after the previous frame.
    int frameLength = 0; ///< Bytes of the MPEG frame after its header, then those in `frameBuffer`.
    int sideInfoLength = 0;
    int bitrate = 0; ///< In kilobits per second.
    bool byStandard = false; ///< Selected when opening.
    bool msStereo = false;
    bool intensityStereo = false;
    int frameSamples = 0; ///< Sample frames in one MPEG frame; 0 after a rewind until the next header.
    int pcmIndex = 0; ///< Next sample frame of `pcmBuffer` to deliver.
    bool reservoirMissing = false; ///< `main_data_begin` points to bytes that have not been read.

    float* overlapBuffer = nullptr; ///< [2 channels][18 time slots][32 subbands]
    float* synthBuffer = nullptr; ///< [2 channels][synthesisHistorySize]
    unsigned char* frameBuffer = nullptr; ///< Side information, reservoir and main data.
    unsigned char* pcmBuffer = nullptr; ///< PCM of one MPEG frame.

    BitReader reader; ///< Position in `frameBuffer`.
    int part2Bits = 0; ///< Bits of the scale factors of the current granule and channel.
    FrameHeader header = {};
    SideInfo sideInfo = {};
    ScaleFactors scaleFactors[maxChannels] = {};
    SpectrumLimits limits[maxChannels] = {};

    /// As read at the last header; the bit reader accesses two bytes after them.
    unsigned char headBytes[headBytesRead + 2] = {};
    int headBytesHeld = 0;

    static constexpr int windowCapacity = 2048;
    unsigned char window[windowCapacity] = {};
    int windowBegin = 0; ///< Position of its first byte.
    int windowHeld = 0; ///< Bytes in it.

    FrameMarks frameMarks; ///< Marks of the MPEG frames decoded, or skipped on the way to them.
};

/// Returns 3 if the file is MPEG audio that SndFileMP3 plays, according to its container or its first four
/// bytes; otherwise 0. A raw stream must begin with an MPEG frame. Task thread; may throw FileEx.
HARMONET_API int ProbeMpeg(SndFileHandle* handle);
/// The same if the format tag is already known (FindFormatTag()).
int ProbeMpeg(SndFileHandle* handle, int formatTag);

} // namespace Quon
