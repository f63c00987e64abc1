#pragma once

#include "harmonet/engine/Vector.h"

namespace Quon
{

/// A 3 by 3 matrix, a plain record written row by row. Row i is the image of axis i: vectors are row vectors,
/// to the left of the matrix.
struct Matrix3
{
    /// The images of the axes X, Y and Z.
    Vector3 rows[3];
};

/// A rotation and a translation. Rows 0 to 2 hold the images of the axes in their first three columns, row 3
/// the translation.
struct Matrix4
{
    /// Row and column.
    float m[4][4];
};

} // namespace Quon
