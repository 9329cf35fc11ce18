// Plane: the points p with dot(normal, p) + d = 0.
#pragma once

#include "math/cVec3.h"

namespace trellis {

class cBounds;
class cMat4;
class cQuat;

/// `cPlane p;` leaves the values alone, `cPlane()` is zero.
class cPlane {
public:
    constexpr cPlane() = default;
    constexpr cPlane(const cVec3& normal_, float d_) : normal(normal_), d(d_) {}
    constexpr cPlane(const cVec3& normal_, const cVec3& point) : normal(normal_), d(-cVec3::Dot(normal_, point)) {}

    /// Distance above the plane, negative below it, in lengths of the normal.
    constexpr float SignedDistance(const cVec3& p) const { return cVec3::Dot(normal, p) + d; }

    /// An orientation seen in the mirror: its three axes are reflected. A reflection turns a right-handed frame into a
    /// left-handed one, so the right axis is the one rebuilt from the other two.
    cQuat MirrorOrient(const cQuat& orient) const;

    /// Whether all eight transformed corners of the box lie below the plane. An empty box holds nothing, so it does.
    bool BelowPlane(const cBounds& bounds, const cMat4& m) const;
    bool BelowPlane(const cVec3* points, int count) const; ///< Whether all of the points do.

    friend constexpr bool operator==(const cPlane& a, const cPlane& b) = default;

    cVec3 normal;
    float d;
};

} // namespace trellis
