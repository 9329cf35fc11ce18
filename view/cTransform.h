// Scale, rotation and translation that are edited in the view, applied in this order.
#pragma once

#include "math/cAngles.h"
#include "math/cVec3.h"
#include "reflection/cClassMembers.h"

namespace trellis {

class cTransform : public cClass {
    TRELLIS_CLASS(cTransform)

public:
    void CustomCtor() override { Scale = cVec3::One; } ///< Identity.

    cVec3 Scale;
    cAngles Rotate; ///< Degrees.
    cVec3 Translate;
};

} // namespace trellis
