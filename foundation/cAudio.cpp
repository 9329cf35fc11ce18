#include "foundation/cAudio.h"

namespace trellis {

namespace {
bool s_Pause = false;
}

void cAudio::SetPause(bool on) {
    s_Pause = on;
}

bool cAudio::GetPause() {
    return s_Pause;
}

} // namespace trellis
