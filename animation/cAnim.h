// A clip of sampled joint poses at a fixed frame rate: so far, its data.
#pragma once

#include "foundation/cStr.h"
#include "math/cBounds.h"
#include "math/cMat4.h"
#include "math/cQuat.h"

namespace trellis {

class cAnim {
public:
    struct Hierarchy {
        cStr Name;
        int Parent; ///< -1 for a root.
    };

    /// A pose in model space.
    struct FrameJoint {
        cVec3 Position;
        cQuat Orientation;
        cVec3 Scale;
    };

    void Free();
    void Copy(const cAnim& other) { *this = other; }

    void ReSample(int frameRate); ///< Nothing yet, as long as no codec makes poses; nor does the next.
    void Transform(const cMat4& matrix);

    cList<Hierarchy> Joints;
    cList<cList<FrameJoint>> Frames; ///< For each frame, one entry for each joint.
    cList<cBounds> Bounds;           ///< For each frame.
    int FrameRate = 0;               ///< Frames a second.
};

} // namespace trellis
