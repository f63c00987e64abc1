// The polyphase stage. The cosine transform processes several time slots per vector; the windowing processes
// several samples of one time slot.

/// out[m] = sum over k of in[k] cos(pi / 2N m (2k + 1)).
///
/// The even outputs are the transform of half the size of the folded sums. The folded differences are divided
/// by 2 cos(pi / 2N (2k + 1)) and transformed; each odd output is the sum of two neighbours of the result.
template<int size>
HARMONET_ALWAYS_INLINE void CosineTransform(const float* cosines, const Lanes* in, Lanes* out)
{
    if constexpr (size == 1) {
        out[0] = in[0];
    }
    else {
        constexpr int half = size / 2;
        Lanes sums[half];
        Lanes differences[half];
        for (int k = 0; k < half; ++k) {
            sums[k] = in[k] + in[size - 1 - k];
            differences[k] = (in[k] - in[size - 1 - k]) * cosines[k];
        }
        Lanes even[half];
        Lanes odd[half];
        CosineTransform<half>(cosines + half, sums, even);
        CosineTransform<half>(cosines + half, differences, odd);
        for (int m = 0; m < half; ++m) {
            out[2 * m] = even[m];
            out[2 * m + 1] = m + 1 < half ? odd[m] + odd[m + 1] : odd[m];
        }
    }
}

constexpr int historySlots = 15;
constexpr int slotRows = historySlots + slotsPerGranule;

/// The cosine sums C of the granule's time slots, after those of the 15 slots before it.
struct SlotSums
{
    /// C[16] to C[31] of a slot, then C[16] down to C[1].
    alignas(64) float rows[slotRows][subbandCount];
    /// C[16] and C[0] again, by slot.
    float middle[slotRows];
    float lowest[slotRows];
};

/// Transforms `laneCount` time slots from `slot` on.
HARMONET_ALWAYS_INLINE void TransformSlots(
    const float* cosines, const float* subbands, int slot, SlotSums& sums)
{
    Lanes in[subbandCount];
    for (int k = 0; k < subbandCount; k += 4) {
        Lanes columns[4];
        LoadColumns(subbands + slot * subbandCount + k, subbandCount, columns);
        for (int i = 0; i < 4; ++i) {
            in[k + i] = columns[i];
        }
    }
    Lanes c[subbandCount];
    CosineTransform<subbandCount>(cosines, in, c);
    const int row = historySlots + slot;
    for (int i = 0; i < 16; i += 4) {
        StoreColumns(
            sums.rows[row] + i, subbandCount, c[16 + i], c[16 + i + 1], c[16 + i + 2], c[16 + i + 3]);
        StoreColumns(
            sums.rows[row] + 16 + i, subbandCount, c[16 - i], c[16 - i - 1], c[16 - i - 2], c[16 - i - 3]);
    }
    Store(sums.middle + row, c[16]);
    Store(sums.lowest + row, c[0]);
}

constexpr int slotsPerBlock = 6;

/// Computes samples j to j + laneCount - 1 and their mirrors 32 - j of six time slots. Sample 0, and the
/// position of a sample 32, are wrong here.
HARMONET_ALWAYS_INLINE void WindowBlock(
    const SynthesisTables& tables, const SlotSums& sums, int slot, int j, float* samples)
{
    Lanes direct[slotsPerBlock] = {};
    Lanes mirrored[slotsPerBlock] = {};
    for (int t = 0; t < 16; ++t) {
        const Lanes directFactor = Load(tables.direct[t] + j);
        const Lanes mirroredFactor = Load(tables.mirrored[t] + j);
        const float* row = sums.rows[historySlots + slot - t] + (t % 2 != 0 ? 16 : 0) + j;
        for (int s = 0; s < slotsPerBlock; ++s) {
            const Lanes sum = Load(row + s * subbandCount);
            direct[s] += sum * directFactor;
            mirrored[s] += sum * mirroredFactor;
        }
    }
    for (int s = 0; s < slotsPerBlock; ++s) {
        float* slotSamples = samples + (slot + s) * subbandCount;
        Store(slotSamples + j, direct[s]);
        Store(slotSamples + subbandCount - j - (laneCount - 1), Reversed(mirrored[s]));
    }
}

/// Computes samples 0 and 16 of `laneCount` time slots from `slot` on.
HARMONET_ALWAYS_INLINE void WindowUnpaired(
    const SynthesisTables& tables, const SlotSums& sums, int slot, float* samples)
{
    Lanes first = {};
    Lanes middle = {};
    for (int t = 0; t < 16; ++t) {
        first += Load(sums.middle + historySlots + slot - t) * tables.first[t];
        if (t % 2 != 0) {
            middle += Load(sums.lowest + historySlots + slot - t) * tables.middle[t];
        }
    }
    for (int i = 0; i < laneCount; ++i) {
        samples[(slot + i) * subbandCount] = first[i];
        samples[(slot + i) * subbandCount + 16] = middle[i];
    }
}

void Synthesis(const SynthesisTables& tables, const float* subbands, float* history, float* samples)
{
    constexpr int rowHistory = historySlots * subbandCount;
    SlotSums sums;
    std::memcpy(sums.rows, history, rowHistory * sizeof(float));
    std::memcpy(sums.middle, history + rowHistory, historySlots * sizeof(float));
    std::memcpy(sums.lowest, history + rowHistory + historySlots, historySlots * sizeof(float));

    // 18 is not a multiple of the lane count: the last vectors overlap and compute some slots twice.
    for (int slot = 0; slot + laneCount <= slotsPerGranule; slot += laneCount) {
        TransformSlots(tables.cosines, subbands, slot, sums);
    }
    TransformSlots(tables.cosines, subbands, slotsPerGranule - laneCount, sums);
    for (int slot = 0; slot < slotsPerGranule; slot += slotsPerBlock) {
        for (int j = 0; j < 16; j += laneCount) {
            WindowBlock(tables, sums, slot, j, samples);
        }
    }
    for (int slot = 0; slot + laneCount <= slotsPerGranule; slot += laneCount) {
        WindowUnpaired(tables, sums, slot, samples);
    }
    WindowUnpaired(tables, sums, slotsPerGranule - laneCount, samples);

    std::memcpy(history, sums.rows[slotsPerGranule], rowHistory * sizeof(float));
    std::memcpy(history + rowHistory, sums.middle + slotsPerGranule, historySlots * sizeof(float));
    std::memcpy(
        history + rowHistory + historySlots, sums.lowest + slotsPerGranule, historySlots * sizeof(float));
}
