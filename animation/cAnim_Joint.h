// The form in which skinning takes a joint: from the bind pose to the pose, both in model space.
#pragma once

namespace trellis {

/// A 3 by 4 matrix for column vectors, so the transpose of a `cMat4` without its last column:
///
///     | m[0]  m[1]  m[2]   m[3]  |   x of a point is the dot product with (x, y, z, 1)
///     | m[4]  m[5]  m[6]   m[7]  |   y
///     | m[8]  m[9]  m[10]  m[11] |   z
struct cAnim_Joint {
    float m[12];
};

} // namespace trellis
