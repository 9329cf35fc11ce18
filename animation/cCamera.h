// A recorded fly-through: so far, its data.
#pragma once

#include "foundation/cStr.h"
#include "math/cQuat.h"
#include "math/cVec3.h"

namespace trellis {

class cCamera {
public:
    struct Frame {
        cVec3 Position;
        cQuat Orientation;
        float FieldOfView; ///< Degrees.
    };

    /// One shot.
    struct Camera {
        cStr Name;
        float ZNear;
        float ZFar;
        int StartFrame;
        cList<Frame> Frames;
    };

    void Free();
    void Copy(const cCamera& other) { *this = other; }

    int FrameRate = 0; ///< Frames a second, of all shots.
    cList<Camera> Cameras;
};

} // namespace trellis
