// The kernels' operations on `Lanes` and `IntLanes`, vectors of four. Each translation unit that compiles the
// kernels includes this file or EightLanes.inl before them, within its unnamed namespace, so that code
// compiled for one processor cannot be linked into another's.

constexpr int laneCount = 4;

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
    return Lanes{value, value, value, value};
}

/// Four floats, repeated to fill the vector.
HARMONET_ALWAYS_INLINE Lanes LoadFour(const float* from)
{
    return Load(from);
}

HARMONET_ALWAYS_INLINE Lanes Reversed(Lanes value)
{
    return Shuffle<3, 2, 1, 0>(value, value);
}

HARMONET_ALWAYS_INLINE IntLanes Evens(IntLanes low, IntLanes high)
{
    return Shuffle<0, 2, 4, 6>(low, high);
}

HARMONET_ALWAYS_INLINE IntLanes Odds(IntLanes low, IntLanes high)
{
    return Shuffle<1, 3, 5, 7>(low, high);
}

HARMONET_ALWAYS_INLINE void Transpose(Lanes (&rows)[4])
{
    const Lanes low01 = Shuffle<0, 4, 1, 5>(rows[0], rows[1]);
    const Lanes low23 = Shuffle<0, 4, 1, 5>(rows[2], rows[3]);
    const Lanes high01 = Shuffle<2, 6, 3, 7>(rows[0], rows[1]);
    const Lanes high23 = Shuffle<2, 6, 3, 7>(rows[2], rows[3]);
    rows[0] = Shuffle<0, 1, 4, 5>(low01, low23);
    rows[1] = Shuffle<2, 3, 6, 7>(low01, low23);
    rows[2] = Shuffle<0, 1, 4, 5>(high01, high23);
    rows[3] = Shuffle<2, 3, 6, 7>(high01, high23);
}

/// Gathers four neighbouring columns of `laneCount` rows: lane r of column c is from[r * stride + c].
HARMONET_ALWAYS_INLINE void LoadColumns(const float* from, int stride, Lanes (&columns)[4])
{
    for (int row = 0; row < 4; ++row) {
        columns[row] = Load(from + row * stride);
    }
    Transpose(columns);
}

/// The reverse: to[r * stride + c] becomes lane r of column c.
HARMONET_ALWAYS_INLINE void StoreColumns(float* to, int stride, Lanes a, Lanes b, Lanes c, Lanes d)
{
    Lanes rows[4] = {a, b, c, d};
    Transpose(rows);
    for (int row = 0; row < 4; ++row) {
        Store(to + row * stride, rows[row]);
    }
}
