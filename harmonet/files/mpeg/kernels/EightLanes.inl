// Same as FourLanes.inl with vectors of eight floats, for AVX2; requires the vector types of GCC and Clang.

constexpr int laneCount = 8;
using Lanes = float __attribute__((vector_size(laneCount * sizeof(float))));
using IntLanes = int __attribute__((vector_size(laneCount * sizeof(int))));
using HalfLanes = float __attribute__((vector_size(4 * sizeof(float))));

HARMONET_ALWAYS_INLINE Lanes Load(const float* from)
{
    Lanes result;
    std::memcpy(&result, from, sizeof result);
    return result;
}

HARMONET_ALWAYS_INLINE void Store(float* to, Lanes value)
{
    std::memcpy(to, &value, sizeof value);
}

HARMONET_ALWAYS_INLINE Lanes Broadcast(float value)
{
    return Lanes{value, value, value, value, value, value, value, value};
}

HARMONET_ALWAYS_INLINE Lanes LoadHalves(const float* low, const float* high)
{
    HalfLanes lowLanes;
    HalfLanes highLanes;
    std::memcpy(&lowLanes, low, sizeof lowLanes);
    std::memcpy(&highLanes, high, sizeof highLanes);
    return __builtin_shufflevector(lowLanes, highLanes, 0, 1, 2, 3, 4, 5, 6, 7);
}

HARMONET_ALWAYS_INLINE void StoreHalves(float* low, float* high, Lanes value)
{
    const HalfLanes lowLanes = __builtin_shufflevector(value, value, 0, 1, 2, 3);
    const HalfLanes highLanes = __builtin_shufflevector(value, value, 4, 5, 6, 7);
    std::memcpy(low, &lowLanes, sizeof lowLanes);
    std::memcpy(high, &highLanes, sizeof highLanes);
}

HARMONET_ALWAYS_INLINE Lanes LoadFour(const float* from)
{
    return LoadHalves(from, from);
}

/// The minimum and the maximum; `b` where `a` is NaN.
HARMONET_ALWAYS_INLINE Lanes Minimum(Lanes a, Lanes b)
{
    return _mm256_min_ps(a, b);
}

HARMONET_ALWAYS_INLINE Lanes Maximum(Lanes a, Lanes b)
{
    return _mm256_max_ps(a, b);
}

HARMONET_ALWAYS_INLINE IntLanes ToInts(Lanes value)
{
    return __builtin_convertvector(value, IntLanes);
}

HARMONET_ALWAYS_INLINE Lanes Reversed(Lanes value)
{
    return __builtin_shufflevector(value, value, 7, 6, 5, 4, 3, 2, 1, 0);
}

HARMONET_ALWAYS_INLINE IntLanes Evens(IntLanes low, IntLanes high)
{
    return __builtin_shufflevector(low, high, 0, 2, 4, 6, 8, 10, 12, 14);
}

HARMONET_ALWAYS_INLINE IntLanes Odds(IntLanes low, IntLanes high)
{
    return __builtin_shufflevector(low, high, 1, 3, 5, 7, 9, 11, 13, 15);
}

/// Transposes the 4 x 4 blocks of the lower and of the upper four lanes separately.
HARMONET_ALWAYS_INLINE void Transpose(Lanes (&rows)[4])
{
    const Lanes low01 = __builtin_shufflevector(rows[0], rows[1], 0, 8, 1, 9, 4, 12, 5, 13);
    const Lanes low23 = __builtin_shufflevector(rows[2], rows[3], 0, 8, 1, 9, 4, 12, 5, 13);
    const Lanes high01 = __builtin_shufflevector(rows[0], rows[1], 2, 10, 3, 11, 6, 14, 7, 15);
    const Lanes high23 = __builtin_shufflevector(rows[2], rows[3], 2, 10, 3, 11, 6, 14, 7, 15);
    rows[0] = __builtin_shufflevector(low01, low23, 0, 1, 8, 9, 4, 5, 12, 13);
    rows[1] = __builtin_shufflevector(low01, low23, 2, 3, 10, 11, 6, 7, 14, 15);
    rows[2] = __builtin_shufflevector(high01, high23, 0, 1, 8, 9, 4, 5, 12, 13);
    rows[3] = __builtin_shufflevector(high01, high23, 2, 3, 10, 11, 6, 7, 14, 15);
}

HARMONET_ALWAYS_INLINE void LoadColumns(const float* from, int stride, Lanes (&columns)[4])
{
    for (int row = 0; row < 4; ++row) {
        columns[row] = LoadHalves(from + row * stride, from + (row + 4) * stride);
    }
    Transpose(columns);
}

HARMONET_ALWAYS_INLINE void StoreColumns(float* to, int stride, Lanes a, Lanes b, Lanes c, Lanes d)
{
    Lanes rows[4] = {a, b, c, d};
    Transpose(rows);
    for (int row = 0; row < 4; ++row) {
        StoreHalves(to + row * stride, to + (row + 4) * stride, rows[row]);
    }
}
