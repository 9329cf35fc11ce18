#include "animation/cAnim.h"

namespace trellis {

void cAnim::Free() {
    Joints.Free();
    Frames.Free();
    Bounds.Free();
    FrameRate = 0;
}

void cAnim::ReSample(int) {}
void cAnim::Transform(const cMat4&) {}

} // namespace trellis
