#pragma once

#include "harmonet/engine/Vector.h"

/// Matrices as plain records, written row by row. Row i is where the matrix takes axis i: a vector stands to
/// the left of the matrix.

namespace Quon
{

struct Matrix3
{
    Vector3 rows[3];
};

/// Rows 0 to 2 hold the images of the axes in their first three columns, row 3 the translation.
struct Matrix4
{
    float m[4][4];
};

} // namespace Quon
