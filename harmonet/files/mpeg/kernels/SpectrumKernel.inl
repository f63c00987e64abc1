// Huffman decoding of one granule and channel, and the scaling of its bands.

/// The next bits of the stream, the first one in the most significant bit; at least `count` of them are
/// valid. `next` is the first byte after them.
struct BitWindow
{
    const unsigned char* next;
    unsigned long long bits;
    int count;
};

HARMONET_ALWAYS_INLINE unsigned long long LoadBigEndian(const unsigned char* from)
{
    unsigned long long result = 0;
    for (int i = 0; i < 8; ++i) {
        result = result << 8 | from[i];
    }
    return result;
}

HARMONET_ALWAYS_INLINE BitWindow OpenWindow(const unsigned char* bytes, int bitPosition)
{
    BitWindow window{bytes + (bitPosition >> 3), 0, 0};
    window.bits = LoadBigEndian(window.next) << (bitPosition & 7);
    window.count = 56 - (bitPosition & 7);
    window.next += 7;
    return window;
}

/// Makes at least 56 bits valid. Bits that are already valid are OR-ed again, unchanged.
HARMONET_ALWAYS_INLINE void Refill(BitWindow& window)
{
    window.bits |= LoadBigEndian(window.next) >> window.count;
    window.next += (63 - window.count) >> 3;
    window.count |= 56;
}

HARMONET_ALWAYS_INLINE void Take(BitWindow& window, int bitCount)
{
    window.bits <<= bitCount;
    window.count -= bitCount;
}

HARMONET_ALWAYS_INLINE int TakeField(BitWindow& window, int bitCount)
{
    const int field = static_cast<int>(window.bits >> (64 - bitCount));
    Take(window, bitCount);
    return field;
}

/// Continues in the jump and value arrays from an inner entry; returns the leaf's value and adds to `taken`.
HARMONET_ALWAYS_INLINE int WalkOn(const HuffmanTable& table, unsigned entry, BitWindow& window, int& taken)
{
    while (table.jump[entry] != huffmanLeaf) {
        const unsigned jump = table.jump[entry];
        const unsigned right = jump == huffmanFarJump ? table.value[entry] + 255U : jump + 1;
        entry += TakeField(window, 1) != 0 ? right : 1;
        ++taken;
    }
    return table.value[entry];
}

/// Reads the linbits and the sign of one value of a pair, and returns its power. Branchless: which values
/// have linbits, and which are negative, is unpredictable.
HARMONET_ALWAYS_INLINE float FinishValue(
    const DecoderTables& tables, const HuffmanTable& table, int value, BitWindow& window, int& taken)
{
    const int linbits = value == maxPairValue ? table.linbits : 0;
    value += static_cast<int>(window.bits >> 1 >> (63 - linbits));
    Take(window, linbits);
    const int signBits = value != 0 ? 1 : 0;
    const unsigned sign = static_cast<unsigned>(window.bits >> 63) & static_cast<unsigned>(signBits);
    Take(window, signBits);
    taken += linbits + signBits;
    unsigned power;
    std::memcpy(&power, &tables.power[value], sizeof power);
    power ^= sign << 31;
    float result;
    std::memcpy(&result, &power, sizeof result);
    return result;
}

/// Decodes a pair that the look-up has not resolved. The window holds 56 bits; the longest pair takes 47.
HARMONET_ALWAYS_INLINE int DecodeLongPair(
    const DecoderTables& tables, const HuffmanTable& table, unsigned found, BitWindow& window, float* pair)
{
    int taken = static_cast<int>(found & lookUpLengthMask);
    Take(window, taken);
    const unsigned payload = found >> lookUpPayloadShift & lookUpPayloadMask;
    const bool isLeaf = (found & lookUpInner) == lookUpLeaf;
    const int leaf = isLeaf ? static_cast<int>(payload) : WalkOn(table, payload, window, taken);
    pair[0] = FinishValue(tables, table, leaf >> 4, window, taken);
    pair[1] = FinishValue(tables, table, leaf & 15, window, taken);
    return taken;
}

/// Reads a pair that the look-up has resolved.
HARMONET_ALWAYS_INLINE int TakePair(
    const DecoderTables& tables, unsigned found, BitWindow& window, float* pair)
{
    const int taken = static_cast<int>(found & lookUpLengthMask);
    Take(window, taken);
    std::memcpy(pair, tables.huffman.pairPowers[found >> lookUpPayloadShift], 2 * sizeof(float));
    return taken;
}

/// Decodes one region of big values, up to the line `end` or the end of the budget; returns the line reached.
HARMONET_ALWAYS_INLINE int DecodePairs(const DecoderTables& tables, const HuffmanTable& table, int line,
    int end, BitWindow& window, int& budget, float* lines)
{
    if (table.jump == nullptr) {
        for (; line < end && budget >= 1; line += 2) {
            lines[line] = 0;
            lines[line + 1] = 0;
        }
        return line;
    }
    const HuffmanLookUp* lookUp = table.lookUp;
    const int shift = 64 - table.lookUpBits;
    while (line < end && budget >= 1) {
        Refill(window);
        unsigned found = lookUp[window.bits >> shift];
        // Two look-ups take at most 22 of the 56 bits.
        if (found < lookUpLeaf && line + 2 < end && budget > maxLookUpBits) [[likely]] {
            budget -= TakePair(tables, found, window, lines + line);
            line += 2;
            found = lookUp[window.bits >> shift];
            if (found >= lookUpLeaf) {
                Refill(window);
            }
        }
        if (found < lookUpLeaf) [[likely]] {
            budget -= TakePair(tables, found, window, lines + line);
        }
        else {
            budget -= DecodeLongPair(tables, table, found, window, lines + line);
        }
        line += 2;
    }
    return line;
}

/// Decodes the count1 region, up to the last line or the end of the budget; returns the line reached.
HARMONET_ALWAYS_INLINE int DecodeQuadruples(const DecoderTables& tables, const HuffmanTable& table, int line,
    BitWindow& window, int& budget, float* lines)
{
    const HuffmanLookUp* lookUp = table.lookUp;
    const float(*powers)[4] = tables.huffman.quadPowers;
    const auto take = [&] {
        const unsigned found = lookUp[window.bits >> (64 - count1LookUpBits)];
        const int taken = static_cast<int>(found & lookUpLengthMask);
        Take(window, taken);
        budget -= taken;
        std::memcpy(lines + line, powers[found >> lookUpPayloadShift], 4 * sizeof(float));
        line += 4;
    };
    while (line < linesPerGranule && budget >= 1) {
        Refill(window);
        take();
        // Four look-ups take at most 40 of the 56 bits.
        while (line + 3 * 4 <= linesPerGranule && budget > 2 * count1LookUpBits) {
            take();
            take();
            take();
            Refill(window);
        }
    }
    return line;
}

HARMONET_ALWAYS_INLINE int Least(int a, int b)
{
    return a < b ? a : b;
}

int DecodeLines(const DecoderTables& tables, const GranuleInfo& info, const unsigned char* bytes,
    int bitPosition, int budget, float* lines)
{
    BitWindow window = OpenWindow(bytes, bitPosition);
    const HuffmanTable* huffman = tables.huffman.tables;
    const int bigEnd = Least(2 * info.big_values, linesPerGranule);
    const int ends[3] = {Least(info.region1Start, bigEnd), Least(info.region2Start, bigEnd), bigEnd};
    int line = 0;
    for (int region = 0; region < 3; ++region) {
        line = DecodePairs(
            tables, huffman[info.table_select[region]], line, ends[region], window, budget, lines);
    }
    line = DecodeQuadruples(
        tables, huffman[count1TableBase + info.count1table_select], line, window, budget, lines);
    line = Least(line, linesPerGranule);
    // The last code reads past the end of this granule's bits, so its values are discarded.
    if (budget < 0 && line >= 4) {
        line -= 4;
    }
    for (int i = line; i < linesPerGranule; i += laneCount) {
        Store(lines + i, Lanes{});
    }
    return line;
}

// A vector at the end of a band extends into the next one, which overwrites its own lines afterwards.
void ScaleBands(const float* lines, const int* bandStart, const float* factors, int bandCount, float* xr)
{
    for (int band = 0; band < bandCount; ++band) {
        const Lanes factor = Broadcast(factors[band]);
        for (int i = bandStart[band]; i < bandStart[band + 1]; i += laneCount) {
            Store(xr + i, Load(lines + i) * factor);
        }
    }
}
