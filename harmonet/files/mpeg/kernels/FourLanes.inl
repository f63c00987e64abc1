// Vectors of four floats, in the compiler's own vector types. One such file is included by each of the
// translation units that compile the kernels, ahead of them and inside its unnamed namespace, so that nothing
// compiled for one processor can be linked into another's code.

constexpr int laneCount = 4;
using Lanes = float __attribute__((vector_size(laneCount * sizeof(float))));
using IntLanes = int __attribute__((vector_size(laneCount * sizeof(int))));

[[gnu::always_inline]] inline Lanes Load(const float* from)
{
    Lanes result;
    __builtin_memcpy(&result, from, sizeof result);
    return result;
}

[[gnu::always_inline]] inline void Store(float* to, Lanes value)
{
    __builtin_memcpy(to, &value, sizeof value);
}

[[gnu::always_inline]] inline Lanes Broadcast(float value)
{
    return Lanes{value, value, value, value};
}

/// Four floats, repeated as often as the vector takes them.
[[gnu::always_inline]] inline Lanes LoadFour(const float* from)
{
    return Load(from);
}

/// The lesser and the greater; `b` where `a` is NaN.
[[gnu::always_inline]] inline Lanes Lesser(Lanes a, Lanes b)
{
    return a < b ? a : b;
}

[[gnu::always_inline]] inline Lanes Greater(Lanes a, Lanes b)
{
    return a > b ? a : b;
}

[[gnu::always_inline]] inline Lanes Reversed(Lanes value)
{
    return __builtin_shufflevector(value, value, 3, 2, 1, 0);
}

[[gnu::always_inline]] inline IntLanes Evens(IntLanes low, IntLanes high)
{
    return __builtin_shufflevector(low, high, 0, 2, 4, 6);
}

[[gnu::always_inline]] inline IntLanes Odds(IntLanes low, IntLanes high)
{
    return __builtin_shufflevector(low, high, 1, 3, 5, 7);
}

[[gnu::always_inline]] inline void Transpose(Lanes (&rows)[4])
{
    const Lanes low01 = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
    const Lanes low23 = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
    const Lanes high01 = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
    const Lanes high23 = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
    rows[0] = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
    rows[1] = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
    rows[2] = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
    rows[3] = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

/// Gathers four neighbouring columns of `laneCount` rows: lane r of column c is from[r * stride + c].
[[gnu::always_inline]] inline void LoadColumns(const float* from, int stride, Lanes (&columns)[4])
{
    for (int row = 0; row < 4; ++row) {
        columns[row] = Load(from + row * stride);
    }
    Transpose(columns);
}

/// The reverse: to[r * stride + c] becomes lane r of column c.
[[gnu::always_inline]] inline void StoreColumns(float* to, int stride, Lanes a, Lanes b, Lanes c, Lanes d)
{
    Lanes rows[4] = {a, b, c, d};
    Transpose(rows);
    for (int row = 0; row < 4; ++row) {
        Store(to + row * stride, rows[row]);
    }
}
