#include "spatial/cBsp.h"

namespace trellis {

bool cBsp::Load(const cFile&) {
    return false;
}

bool cBsp::Save(cFile*) const {
    return false;
}

void cBsp::Free() {}

} // namespace trellis
