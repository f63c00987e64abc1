// Mid/side, alias reduction and the hybrid transform. A vector of the transform holds one line of several
// subbands.

void MidSide(float* left, float* right, int lineCount)
{
    for (int i = 0; i < lineCount; i += laneCount) {
        const Lanes middle = Load(left + i);
        const Lanes side = Load(right + i);
        Store(left + i, middle + side);
        Store(right + i, middle - side);
    }
}

void AliasReduction(const AliasTables& tables, float* xr, int boundaryCount)
{
    for (int part = 0; part < 8; part += laneCount) {
        const Lanes cs = Load(tables.cs + part);
        const Lanes ca = Load(tables.ca + part);
        for (int boundary = 1; boundary <= boundaryCount; ++boundary) {
            float* below = xr + boundary * linesPerSubband - part - laneCount;
            float* above = xr + boundary * linesPerSubband + part;
            const Lanes u = Reversed(Load(below));
            const Lanes d = Load(above);
            Store(below, Reversed(u * cs - d * ca));
            Store(above, d * cs + u * ca);
        }
    }
}

constexpr float cos10 = 0.984807753012208F;
constexpr float cos20 = 0.939692620785908F;
constexpr float cos30 = 0.866025403784439F;
constexpr float cos40 = 0.766044443118978F;
constexpr float cos50 = 0.642787609686539F;
constexpr float cos70 = 0.342020143325669F;
constexpr float cos80 = 0.173648177666930F;

/// out[k] = sum over m of z[m] cos(pi / 18 m (2k + 1)) for nine values. Even m are symmetric about k = 4 and
/// odd m antisymmetric, so each half is computed once; angles are in degrees.
HARMONET_ALWAYS_INLINE void NineCosineSums(
    Lanes z0, Lanes z1, Lanes z2, Lanes z3, Lanes z4, Lanes z5, Lanes z6, Lanes z7, Lanes z8, Lanes (&out)[9])
{
    const Lanes halfway = z0 + 0.5F * z6;
    const Lanes even0 = halfway + cos20 * z2 + cos40 * z4 + cos80 * z8;
    const Lanes even2 = halfway - cos80 * z2 - cos20 * z4 + cos40 * z8;
    const Lanes even3 = halfway - cos40 * z2 + cos80 * z4 - cos20 * z8;
    const Lanes ends = z0 - z6;
    const Lanes middle = z2 - z4 - z8;
    const Lanes even1 = ends + 0.5F * middle;
    const Lanes thirds = cos30 * z3;
    const Lanes odd0 = cos10 * z1 + thirds + cos50 * z5 + cos70 * z7;
    const Lanes odd1 = cos30 * (z1 - z5 - z7);
    const Lanes odd2 = cos50 * z1 - thirds - cos70 * z5 + cos10 * z7;
    const Lanes odd3 = cos70 * z1 - thirds + cos10 * z5 - cos50 * z7;
    out[0] = even0 + odd0;
    out[1] = even1 + odd1;
    out[2] = even2 + odd2;
    out[3] = even3 + odd3;
    out[4] = ends - middle;
    out[5] = even3 - odd3;
    out[6] = even2 - odd2;
    out[7] = even1 - odd1;
    out[8] = even0 - odd0;
}

/// The 18 sums over n of X[n] cos(pi / 72 (2k + 1)(2n + 1)), each times 2 cos(pi / 72 (2k + 1)).
///
/// That factor turns the sum into one over z[n] = X[n] + X[n - 1] with cos(pi / 36 n (2k + 1)). Its even n
/// are a sum of nine that is equal for k and 17 - k; its odd n have the opposite sign there and become a sum
/// of nine by the same step with the factor 2 cos(pi / 36 (2k + 1)).
HARMONET_ALWAYS_INLINE void EighteenCosineSums(
    const Lanes (&x)[18], const float* joinFactors, Lanes (&sums)[18])
{
    Lanes z[18];
    z[0] = x[0];
    for (int n = 1; n < 18; ++n) {
        z[n] = x[n] + x[n - 1];
    }
    Lanes even[9];
    NineCosineSums(z[0], z[2], z[4], z[6], z[8], z[10], z[12], z[14], z[16], even);
    Lanes odd[9];
    NineCosineSums(z[1], z[3] + z[1], z[5] + z[3], z[7] + z[5], z[9] + z[7], z[11] + z[9], z[13] + z[11],
        z[15] + z[13], z[17] + z[15], odd);
    for (int k = 0; k < 9; ++k) {
        const Lanes joined = odd[k] * joinFactors[k];
        sums[k] = even[k] + joined;
        sums[17 - k] = even[k] - joined;
    }
}

/// Column n is line n of each of the group's subbands.
HARMONET_ALWAYS_INLINE void LoadLines(const float* xr, int subband, Lanes (&x)[18])
{
    const float* lines = xr + subband * linesPerSubband;
    constexpr int starts[5] = {0, 4, 8, 12, 14};
    for (int start : starts) {
        Lanes columns[4];
        LoadColumns(lines + start, linesPerSubband, columns);
        for (int i = 0; i < 4; ++i) {
            x[start + i] = columns[i];
        }
    }
}

void LongTransform(
    const HybridTables& tables, int blockType, const float* xr, int subband, float* overlap, float* out)
{
    Lanes x[18];
    LoadLines(xr, subband, x);
    Lanes sums[18];
    EighteenCosineSums(x, tables.joinFactors, sums);
    const SubbandFactor* window = tables.longWindow[blockType];
    overlap += subband;
    out += subband;
    for (int i = 0; i < 18; ++i) {
        const Lanes early = sums[i < 9 ? i + 9 : 26 - i];
        const Lanes late = sums[i < 9 ? 8 - i : i - 9];
        float* kept = overlap + i * subbandCount;
        Store(out + i * subbandCount, early * LoadFour(window[i]) + Load(kept));
        Store(kept, late * LoadFour(window[18 + i]));
    }
}

/// One window's twelve outputs are six cosine sums, unfolded like those of the long transform.
HARMONET_ALWAYS_INLINE void AddShortWindow(
    const HybridTables& tables, const Lanes* x, int firstOutput, Lanes (&outputs)[36])
{
    Lanes sums[6];
    for (int k = 0; k < 6; ++k) {
        sums[k] = x[0] * tables.shortCosines[k][0];
        for (int n = 1; n < 6; ++n) {
            sums[k] += x[3 * n] * tables.shortCosines[k][n];
        }
    }
    for (int i = 0; i < 12; ++i) {
        const Lanes sum = i < 3 ? sums[i + 3] : i < 9 ? -sums[8 - i] : -sums[i - 9];
        outputs[firstOutput + i] += sum * tables.shortWindow[i];
    }
}

void ShortTransform(const HybridTables& tables, const float* xr, int subband, float* overlap, float* out)
{
    Lanes x[18];
    LoadLines(xr, subband, x);
    Lanes outputs[36] = {};
    for (int window = 0; window < shortWindowCount; ++window) {
        AddShortWindow(tables, x + window, 6 + 6 * window, outputs);
    }
    overlap += subband;
    out += subband;
    for (int i = 0; i < 18; ++i) {
        const Lanes inversion = LoadFour(tables.inversion[i % 2]);
        float* kept = overlap + i * subbandCount;
        Store(out + i * subbandCount, outputs[i] * inversion + Load(kept));
        Store(kept, outputs[18 + i] * inversion);
    }
}

void FlushOverlap(int subband, float* overlap, float* out)
{
    for (int i = subband; i < slotsPerGranule * subbandCount; i += subbandCount) {
        Store(out + i, Load(overlap + i));
        Store(overlap + i, Lanes{});
    }
}
