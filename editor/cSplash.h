// The start-up picture.
#pragma once

namespace trellis {

class cSplash {
public:
    static void DestroyNow(); ///< Takes the picture down; safe when none is shown.
};

} // namespace trellis
