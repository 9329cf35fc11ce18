#include "animation/cCamera.h"

namespace trellis {

void cCamera::Free() {
    FrameRate = 0;
    Cameras.Free();
}

} // namespace trellis
