// A node of a spline: an end point between two control points.
#pragma once

#include "math/cVec3.h"
#include "reflection/cClassMembers.h"

namespace trellis {

/// Points are in the spline's own space.
class cSpline_Node : public cClass {
    TRELLIS_CLASS(cSpline_Node)

public:
    using cClass::ToString;

    void CustomCtor() override; ///< At 10 above the origin, the curve running along X.
    cStr ToString() override;   ///< "1. Node", counted in the list it stands in.

    cVec3 CV0; ///< Control point of the segment that comes in.
    cVec3 EP;  ///< End point, which the curve goes through.
    cVec3 CV1; ///< Control point of the segment that goes out.
};

} // namespace trellis
