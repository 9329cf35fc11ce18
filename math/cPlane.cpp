#include "math/cPlane.h"

#include "math/cBounds.h"
#include "math/cMat4.h"
#include "math/cQuat.h"

#include <algorithm>

namespace trellis {

cQuat cPlane::MirrorOrient(const cQuat& orient) const {
    const cMat3 axes = orient.ToMat3();
    const auto mirror = [this](const cVec3& v) { return v - normal * (2 * cVec3::Dot(v, normal)); };
    const cVec3 up = mirror(axes.GetRow(1));
    const cVec3 back = mirror(axes.GetRow(2));
    return cMat3(cVec3::Cross(up, back), up, back).ToQuat();
}

bool cPlane::BelowPlane(const cVec3* points, int count) const {
    return std::all_of(points, points + count, [this](const cVec3& p) { return SignedDistance(p) < 0; });
}

bool cPlane::BelowPlane(const cBounds& bounds, const cMat4& m) const {
    if (bounds.IsEmpty()) {
        return true;
    }
    cVec3 corners[8];
    bounds.ToPoints(corners);
    cVec3::TransformCoordinate(corners, 8, m);
    return BelowPlane(corners, 8);
}

} // namespace trellis
