// A point that is edited in the view.
#pragma once

#include "math/cVec3.h"
#include "reflection/cClassMembers.h"

namespace trellis {

/// Files know it as "Position".
class cPosition : public cClass {
    TRELLIS_CLASS_NAMED(cPosition, "Position")

public:
    void Move(); ///< Nothing happens until there is a tool to move it with.

    cVec3 Position;
};

} // namespace trellis
