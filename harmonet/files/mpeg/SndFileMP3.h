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

/// The reader of MPEG audio Layer III, MPEG-1 and MPEG-2 (low sampling frequencies), bare or in a RIFF/WAVE
/// file with format tag 85. It decodes one MPEG frame at a time into a buffer of its own, from which
/// ReadSamples() copies. Ownership and threads as for every SndFile; decoding allocates nothing. One object
/// takes under 24 KB, its buffers counted, next to the tables that all objects share. The first object
/// builds those and the last one frees them, without a lock: objects are made and deleted one at a time.
///
/// *Broken streams.* Bytes that are no frame header are skipped. A header with a field that cannot be played,
/// or data that end too soon, end a call; the next call goes on behind them. A frame whose bit reservoir is
/// not there, as at the start of a stream that was cut out of a longer one, fades out what was sounding and
/// is silent, and its own bytes go into the reservoir. A CRC is not verified. Corrupt main data give noise,
/// held inside its granule by the bit counts of the side information.
///
/// *A change of channels or rate in mid-stream.* The format is that of the samples handed out last. A change
/// of channels ends a call of ReadSamples(), so that one call never mixes layouts; the next call begins with
/// the new layout. A call writes no more bytes than `samples` sample frames take in the format before the
/// call, and so delivers fewer sample frames than asked for where channels are added. Where that leaves no
/// room for even one sample frame, in a call that asks for a single sample frame of one channel, the two
/// channels are mixed into one. Only 0 means the end. A change of the rate alone does not end a call. At open
/// the format is that of the first MPEG frame, or of the last one where the frames had to be counted.
///
/// *Rules.* Where this library's own rules of decoding differ from those of the standards, a reader follows
/// its own, or those of the standards if the list of open files says so while it opens
/// (SndFileCache::SetMpegStandard()).
///
/// *Layout of the buffers.* They are internal and arranged for vector arithmetic: `overlapBuffer` and the
/// hybrid output by time slot and then subband, with the frequency inversion done; `synthBuffer` as 15 past
/// time slots of 32 cosine sums, of which the 64 matrixing rows are copies with signs.
class HARMONET_API SndFileMP3 : public SndFile
{
public:
    SndFileMP3();
    SndFileMP3(const SndFileMP3&) = delete;
    SndFileMP3& operator=(const SndFileMP3&) = delete;
    ~SndFileMP3() override;

    /// Refuses: only PCM plays from the caller's memory.
    bool OpenMemory(void* newData, unsigned long newSize, WaveFormatEx* format) override;
    bool Open(SndNode* newNode) override;
    /// Walks all frame headers to count the sample frames, unless a wrapper states their number. The count
    /// takes in a last frame that the end of the file cuts short, which is not delivered.
    bool OpenHandle(SndFileHandle* newHandle) override;
    /// Null: the format in the node says all there is to say.
    void* CreateNodeInfo() override;
    void CloseFile(unsigned int soundID, Sound* owner) override;
    int ReadSamples(unsigned char* buffer, int samples) override;
    /// Passes over whole frames by their headers alone. The count is exact, also beyond the sound samples;
    /// the sound is wrong for a moment behind a long skip, since the frames passed over leave the bit
    /// reservoir and the filters as they were.
    int SkipSamples(int samples) override;
    void Rewind() override;
    unsigned long GetRemainLength() override;
    unsigned long GetCurrentLength() override;
    /// Within the last second or so that has been decoded it goes back to an MPEG frame whose place it has
    /// kept, and decodes a few frames, so that the sound is right at once.
    void StepBack(int samples) override;
    /// Walks the frame headers from the start and decodes the frames before the place, as many as its bit
    /// reservoir and the filters need; at the lowest bit rates a few more frames can still differ.
    void SeekTo(int sample) override;

    /// Makes all objects decode with these kernels, for comparisons; null goes back to the fastest ones. Not
    /// while any object decodes.
    static void UseKernels(const DecoderKernels* chosen);

protected:
    /// Reads from an open file are taken out of a window, which is read in one go: an MPEG frame is read in
    /// two small pieces, one behind the other, and each would cost two calls of the system.
    int Read(unsigned char* buffer, int bytes, int position) override;

private:
    static constexpr int crcBytes = 2;
    static constexpr int overlapPerChannel = subbandCount * slotsPerGranule;
    static constexpr int frameBufferBytes = 2308;
    static constexpr int maxFrameSamples = 1152;
    static constexpr int pcmBufferBytes = maxFrameSamples * maxChannels * 2;
    /// A header with its CRC and side information, which are read in one go.
    static constexpr int headBytesRead = frameHeaderBytes + crcBytes + maxSideInfoBytes;

    bool ParseContainer();
    void TakeContainerFormat(unsigned int chunkBytes, const WaveFormatEx& format);
    void AllocateBuffers();
    void FreeBuffers();
    /// What both ways of opening have in common at their end.
    void FinishOpen();
    void ChooseRules();
    void CountSamples();

    /// Finds and parses the next frame header at `readPosition` and takes the format from it.
    bool ReadHeader();
    /// Goes on to the next sync pattern; false at the end of the data.
    bool FindSync();
    /// Decodes the next MPEG frame, whose first sample frame is number `sample` of the file, into
    /// `pcmBuffer`. After a failure nothing is left in there to hand out.
    bool DecodeFrame(int sample);
    /// DecodeFrame() for ReadSamples(). With `keepChannels` a frame of other channels counts as a failure; it
    /// waits in `pcmBuffer` for the next call.
    bool DecodeNext(bool keepChannels);
    /// Hands out one sample frame of two channels where the caller has room for one channel.
    int DeliverMixed(unsigned char* buffer);
    bool ReadFrame();
    /// Puts the side information, the reservoir and the new main data into `frameBuffer`.
    bool FillFrameBuffer(const unsigned char* sideInfoBytes, int reservoirHeld);
    void DecodeGranule(int granule);
    /// Skips one frame by its header if it is no longer than `samples`; returns how long it was.
    int SkipFrame(int samples);
    /// Decodes until `target` is in `pcmBuffer`, from up to `warmUpFrames` before it whose places are known.
    bool DecodeTo(int target, int warmUpFrames);
    /// From the start to the frame that holds `target`, keeping the places. False if the data end before it.
    bool WalkTo(int target);
    /// The format that the samples in `pcmBuffer` have.
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

    int readPosition = 0; ///< Of the next byte to read, from the first data byte.
    int previousLength = 0; ///< Bytes that `frameBuffer` held after the previous frame.
    int frameLength = 0; ///< Bytes of the frame behind its header, then those that `frameBuffer` holds.
    int sideInfoLength = 0;
    int bitrate = 0; ///< In kilobits per second.
    bool byStandard = false; ///< Chosen at open.
    bool msStereo = false;
    bool intensityStereo = false;
    int frameSamples = 0; ///< Sample frames in one MPEG frame; 0 after a rewind until the next header.
    int pcmIndex = 0; ///< Next sample frame of `pcmBuffer` to hand out.
    bool reservoirMissing = false; ///< `main_data_begin` points to bytes that nobody has read.

    float* overlapBuffer = nullptr; ///< [2 channels][18 time slots][32 subbands]
    float* synthBuffer = nullptr; ///< [2 channels][synthesisHistorySize]
    unsigned char* frameBuffer = nullptr; ///< Side information, reservoir and main data.
    unsigned char* pcmBuffer = nullptr; ///< PCM of one MPEG frame.

    BitReader reader; ///< Position in `frameBuffer`.
    int part2Bits = 0; ///< Bits of the scale factors of the granule and channel at hand.
    FrameHeader header = {};
    SideInfo sideInfo = {};
    ScaleFactors scaleFactors[maxChannels] = {};
    SpectrumLimits limits[maxChannels] = {};

    /// As read at the header found last; the bit reader touches two bytes behind them.
    unsigned char headBytes[headBytesRead + 2] = {};
    int headBytesHeld = 0;

    static constexpr int windowCapacity = 2048;
    unsigned char window[windowCapacity] = {};
    int windowBegin = 0; ///< Position of its first byte.
    int windowHeld = 0; ///< Bytes in it.

    FrameMarks frameMarks; ///< Of the frames that have been decoded, or walked to in order to decode them.
};

/// 3 if the file is MPEG audio of the kind that SndFileMP3 plays, going by its wrapper or by its first four
/// bytes; otherwise 0. A bare stream has to begin with an MPEG frame. Task thread; FileEx passes through.
HARMONET_API int ProbeMpeg(SndFileHandle* handle);
/// The same where the format tag is known already (FindFormatTag()).
int ProbeMpeg(SndFileHandle* handle, int formatTag);

} // namespace Quon
