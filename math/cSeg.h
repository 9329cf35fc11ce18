// Segment, ray or line: a start, a unit direction and a length.
#pragma once

#include "math/cVec3.h"

namespace trellis {

/// One object for the three; each operation is told what to take it for. `cSeg s;` leaves the values alone.
class cSeg {
public:
    enum ConsiderAs {
        Segment, ///< From the start to the end.
        Ray,     ///< From the start on without end.
        Line     ///< Without end both ways.
    };

    constexpr cSeg() = default;
    cSeg(const cVec3& a, const cVec3& b, float eps = cMath::Epsilon) { SetFromEnds(a, b, eps); }

    /// A length below `eps`, or whose square is beyond float, makes the segment zero: no direction, length 0.
    void SetFromEnds(const cVec3& a, const cVec3& b, float eps = cMath::Epsilon) { SetFromRay(a, b - a, eps); }
    void SetFromRay(const cVec3& origin, const cVec3& dir, float eps = cMath::Epsilon); ///< Length of `dir`.

    constexpr bool IsZero() const { return length == 0 || direction == cVec3::Zero; }
    constexpr cVec3 GetEnd() const { return start + direction * length; }
    constexpr cVec3 GetPoint(float fraction) const { return start + direction * (length * fraction); }

    /// @return the closest point to `p` as a fraction of the length: in [0, 1] for a segment, 0 or more for a ray; 0
    /// for
    ///         a zero segment
    float ProjectPoint(ConsiderAs as, const cVec3& p) const;

    static float Distance(ConsiderAs as, const cSeg& seg, const cVec3& p);
    static float Distance(ConsiderAs as, const cSeg& a, const cSeg& b); ///< Both taken for the same.

    /// Closest points of two, both taken for the same, or each for its own kind (Ericson, "Real-Time Collision
    /// Detection", 5.1.9). Where many pairs are equally close it is one of them; a zero segment is a point.
    static void ClosestPoints(ConsiderAs as, const cSeg& a, const cSeg& b, cVec3& onA, cVec3& onB);
    static void ClosestPoints(ConsiderAs asA, const cSeg& a, ConsiderAs asB, const cSeg& b, cVec3& onA, cVec3& onB);

    cVec3 start;
    cVec3 direction; ///< Of unit length, or zero.
    float length;
};

} // namespace trellis
