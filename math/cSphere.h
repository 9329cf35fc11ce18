// Sphere by centre and radius.
#pragma once

#include "math/cPlane.h"

namespace trellis {

/// `cSphere s;` leaves the values alone.
class cSphere {
public:
    constexpr cSphere() = default;
    constexpr cSphere(const cVec3& center_, float radius_) : center(center_), radius(radius_) {}

    /// How far the sphere lies above the plane, or below it (negative); 0 when it touches or cuts it.
    float SignedDistanceToPlane(const cPlane& plane) const;

    /// Where a line enters and leaves, as parameters in lengths of `dir`, t0 <= t1; negative ones lie behind the
    /// origin.
    ///
    /// @return false when it passes by, or `dir` is zero; the parameters are then untouched
    bool RayIntersection(const cVec3& origin, const cVec3& dir, float& t0, float& t1) const;

    /// Closest hit, not behind the origin, in a strided array. From inside a sphere the hit is where the ray leaves it.
    ///
    /// @param stride  bytes from one sphere to the next
    /// @param t       receives the parameter; may be null
    /// @return index of the sphere, the first of equals, or -1
    static int RayIntersection(const cSphere* spheres, int n, unsigned int stride, const cVec3& origin,
                               const cVec3& dir, float* t = nullptr);

    /// Whether the segment comes closer to the centre than the radius. One shorter than 0.001 does not.
    bool LineIntersection(const cVec3& a, const cVec3& b) const;

    /// Through four points; points in one plane have no such sphere and get an enclosing one.
    static cSphere FromPoints(const cVec3& a, const cVec3& b, const cVec3& c, const cVec3& d);

    /// Encloses the points, about the middle of their box. No points give a zero sphere.
    static cSphere FromPoints(const cVec3* points, int count);

    friend constexpr bool operator==(const cSphere& a, const cSphere& b) = default;

    cVec3 center;
    float radius;
};

} // namespace trellis
