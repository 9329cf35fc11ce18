// Entry of the cameras' registry.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"

namespace trellis {

class cCamera;

/// An ID is the position in `cIO_Cameras`.
struct cIO_Camera {
    ~cIO_Camera();

    cCamera* Camera = nullptr; ///< Null while unloaded.
    cStr Path;                 ///< Absolute.
};

extern cList<cIO_Camera*>& cIO_Cameras;

} // namespace trellis
