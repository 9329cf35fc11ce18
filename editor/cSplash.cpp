#include "editor/cSplash.h"

namespace trellis {

void cSplash::DestroyNow() {}

} // namespace trellis
