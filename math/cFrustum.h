// What an eye sees: eight corners and six planes that face inward.
//
//     7 ------- 6        0 to 3 on the near face: left-bottom, right-bottom, right-top, left-top
//     |  far    |        as the eye sees them; 4 to 7 the same on the far face
//     4 ------- 5
#pragma once

#include "math/cPlane.h"
#include "math/cVec2.h"

namespace trellis {

/// `cFrustum f;` leaves the values alone.
class cFrustum {
public:
    /// The planes from the corners. A collapsed face gives a zero plane, which culls nothing.
    void CalcPlanes();

    /// True when the point lies on the outer side of any plane.
    bool CullPoint(const cVec3& p) const;

    /// True when all corners of the transformed box lie on the outer side of one plane. A box beside an edge may pass.
    bool CullBounds(const cBounds& bounds, const cMat4& m) const;

    /// Scales each of the two end faces, being rectangles, about its centre, `s.x` along its bottom edge and `s.y`
    /// along its left edge, and recalculates the planes.
    void Scale(const cVec2& s);

    static constexpr int Triangles[36] = { // two for each face; the first gives the face's plane
        0, 1, 2, 0, 2, 3, 4, 7, 5, 5, 7, 6, 0, 4, 1, 1, 4, 5, 3, 2, 7, 2, 6, 7, 3, 7, 4, 3, 4, 0, 2, 5, 6, 2, 1, 5};
    static constexpr int Segments[24] = {0, 1, 1, 2, 2, 3, 3, 0, 4, 5, 5, 6, 6, 7, 7, 4, 0, 4, 1, 5, 2, 6, 3, 7};

    friend constexpr bool operator==(const cFrustum& a, const cFrustum& b) = default;

    cVec3 corners[8];
    cPlane planes[6];

    static const cFrustum Zero;
};

inline constexpr cFrustum cFrustum::Zero{};

} // namespace trellis
