// Conversion of samples to 16-bit PCM.

/// Scales, truncates towards zero and clips. NaN becomes the upper limit.
HARMONET_ALWAYS_INLINE IntLanes ToPcm(Lanes sample)
{
    const Lanes scaled = sample * Broadcast(32767.0F);
    const Lanes clipped = Maximum(Minimum(scaled, Broadcast(32767.0F)), Broadcast(-32768.0F));
    return ToInts(clipped);
}

/// Two neighbouring 16-bit samples, the first one at the lower address.
HARMONET_ALWAYS_INLINE void StorePairs(IntLanes first, IntLanes second, unsigned char* pcm)
{
    if constexpr (isLittleEndian) {
        const IntLanes pairs = (second << 16) | (first & 0xFFFF);
        std::memcpy(pcm, &pairs, sizeof pairs);
    }
    else {
        for (int i = 0; i < laneCount; ++i) {
            pcm[4 * i] = static_cast<unsigned char>(first[i]);
            pcm[4 * i + 1] = static_cast<unsigned char>(first[i] >> 8);
            pcm[4 * i + 2] = static_cast<unsigned char>(second[i]);
            pcm[4 * i + 3] = static_cast<unsigned char>(second[i] >> 8);
        }
    }
}

void StorePcm16(const float* left, const float* right, int count, unsigned char* pcm)
{
    if (right != nullptr) {
        for (int i = 0; i < count; i += laneCount) {
            StorePairs(ToPcm(Load(left + i)), ToPcm(Load(right + i)), pcm + 4 * i);
        }
        return;
    }
    for (int i = 0; i < count; i += 2 * laneCount) {
        const IntLanes low = ToPcm(Load(left + i));
        const IntLanes high = ToPcm(Load(left + i + laneCount));
        StorePairs(Evens(low, high), Odds(low, high), pcm + 2 * i);
    }
}
