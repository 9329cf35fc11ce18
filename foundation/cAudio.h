// The audio layer's place in the foundation: what the pause tells it.
#pragma once

namespace trellis {

class cAudio {
public:
    static void SetPause(bool on); ///< Remembers the state; there is no sound output here.
    static bool GetPause();
};

} // namespace trellis
