#include "math/cFrustum.h"

#include "math/cBounds.h"

#include <algorithm>

namespace trellis {

void cFrustum::CalcPlanes() {
    for (int face = 0; face < 6; face++) {
        const int* t = &Triangles[face * 6];
        const cVec3& a = corners[t[0]];
        const cVec3 normal = cVec3::Cross(corners[t[2]] - a, corners[t[1]] - a);
        planes[face] = normal.LengthSq() < cMath::EpsilonSq ? cPlane() : cPlane(cVec3::Normalize(normal), a);
    }
}

bool cFrustum::CullPoint(const cVec3& p) const {
    return std::any_of(planes, planes + 6, [&p](const cPlane& plane) { return plane.SignedDistance(p) < 0; });
}

bool cFrustum::CullBounds(const cBounds& bounds, const cMat4& m) const {
    if (bounds.IsEmpty()) {
        return true;
    }
    cVec3 points[8];
    bounds.ToPoints(points);
    cVec3::TransformCoordinate(points, 8, m);
    return std::any_of(planes, planes + 6, [&points](const cPlane& plane) { return plane.BelowPlane(points, 8); });
}

void cFrustum::Scale(const cVec2& s) {
    for (cVec3* face : {corners, corners + 4}) {
        const cVec3 halfX = ((face[1] - face[0]) + (face[2] - face[3])) * 0.25f;
        const cVec3 halfY = ((face[3] - face[0]) + (face[2] - face[1])) * 0.25f;
        const cVec3 growX = halfX * (s.x - 1);
        const cVec3 growY = halfY * (s.y - 1);
        face[0] = face[0] - growX - growY;
        face[1] = face[1] + growX - growY;
        face[2] = face[2] + growX + growY;
        face[3] = face[3] - growX + growY;
    }
    CalcPlanes();
}

} // namespace trellis
