// Entry of the animations' registry.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"
#include "math/cMat4.h"

namespace trellis {

class cAnim;

/// An ID is the position in `cIO_Anims`.
struct cIO_Anim {
    ~cIO_Anim();

    cAnim* Anim = nullptr; ///< Null while unloaded.
    cStr Path;             ///< Relative to the read folder.
    cStr AbsolutePath;
    int Selector = 0; ///< Frame rate that was asked for; 0 for the clip's own.
    cMat4 Transform;
};

extern cList<cIO_Anim*>& cIO_Anims;

} // namespace trellis
