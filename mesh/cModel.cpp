#include "mesh/cModel.h"

namespace trellis {

void cModel::Free() {
    FreeRenderBuffers();
    Static = true;
    Joints.Free();
    Meshes.Free();
}

} // namespace trellis
