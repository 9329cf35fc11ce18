// Axis-aligned box in space.
#pragma once

#include "foundation/cList.h"
#include "math/Bounds.h"
#include "math/cVec3.h"

namespace trellis {

class cMat4;

class cBounds : public Bounds<float, 3> {
public:
    cBounds() = default;
    constexpr cBounds(const cBounds&) = default;
    constexpr cBounds& operator=(const cBounds&) = default;
    constexpr ~cBounds() override {}
    constexpr cBounds(const cVec3& min_, const cVec3& max_) : Bounds(min_, max_) {}

    /// The smallest box around the points; `Empty` when there are none. Plane points get z = 0.
    static cBounds FromPoints(const cVec2* points, int count);
    static cBounds FromPoints(const cVec3* points, int count);
    static cBounds FromPoints(const cList<cVec3>& points);

    /// Corner i stands at max in x for bit 0 of i, in y for bit 1, in z for bit 2.
    void ToPoints(cVec3* eight) const;

    float DistanceToPointSq(const cVec3& p) const; ///< 0 inside.

    /// Ray against the box (Woo, "Fast Ray-Box Intersection").
    ///
    /// A direction that points away from the nearest face is not told apart: the hit then lies behind the origin, and
    /// `t` is negative. Callers that trace both ways rely on it.
    ///
    /// @param t  receives the distance in lengths of `dir`, 0 from inside; untouched where there is no hit
    bool RayIntersection(const cVec3& origin, const cVec3& dir, float& t) const;

    /// The box around the eight transformed corners; an empty box stays as it is.
    static cBounds Transform(const cBounds& bounds, const cMat4& m);
    static cBounds Lerp(const cBounds& a, const cBounds& b, float t); ///< Of both corners.
    void Transform(const cMat4& m) { *this = Transform(*this, m); }

    static const cBounds Zero;
    static const cBounds One;   ///< From (0, 0, 0) to (1, 1, 1).
    static const cBounds Empty; ///< min is FLT_MAX, max is -FLT_MAX.
};

inline constexpr cBounds cBounds::Zero{cVec3::Zero, cVec3::Zero};
inline constexpr cBounds cBounds::One{cVec3::Zero, cVec3::One};
inline constexpr cBounds cBounds::Empty{cVec3::Infinity, -cVec3::Infinity};

} // namespace trellis
