#include "math/cBounds.h"

#include "math/cMat4.h"

#include <cmath>

namespace trellis {

cBounds cBounds::FromPoints(const cVec2* points, int count) {
    cBounds box = Empty;
    for (int i = 0; i < count; i++) {
        box.Add(cVec3(points[i], 0));
    }
    return box;
}

cBounds cBounds::FromPoints(const cVec3* points, int count) {
    cVec3 low = Empty.min;
    cVec3 high = Empty.max;
    for (int i = 0; i < count; i++) {
        low = cVec3::Min(low, points[i]);
        high = cVec3::Max(high, points[i]);
    }
    return {low, high};
}

cBounds cBounds::FromPoints(const cList<cVec3>& points) {
    return FromPoints(points.Data(), points.Count());
}

void cBounds::ToPoints(cVec3* eight) const {
    for (int i = 0; i < 8; i++) {
        eight[i] = {i & 1 ? max[0] : min[0], i & 2 ? max[1] : min[1], i & 4 ? max[2] : min[2]};
    }
}

float cBounds::DistanceToPointSq(const cVec3& p) const {
    const cVec3 nearest = cVec3::Min(cVec3::Max(p, min), max);
    return cVec3::DistanceSq(p, nearest);
}

bool cBounds::RayIntersection(const cVec3& origin, const cVec3& dir, float& t) const {
    if (IsEmpty()) {
        return false;
    }
    int axis = -1;
    int insideCount = 0;
    float distance = 0; // from the origin to the candidate face, along its axis
    for (int i = 0; i < 3; i++) {
        if (origin[i] >= min[i] && origin[i] <= max[i]) {
            insideCount++;
            continue;
        }
        if (dir[i] == 0) {
            continue;
        }
        const float d = (origin[i] < min[i] ? min[i] : max[i]) - origin[i];
        if (axis < 0 || std::fabs(d) * std::fabs(dir[axis]) > std::fabs(distance) * std::fabs(dir[i])) {
            axis = i;
            distance = d;
        }
    }
    if (insideCount == 3) {
        t = 0;
        return true;
    }
    if (axis < 0) {
        return false;
    }
    const float fraction = distance / dir[axis];
    for (int i = 0; i < 3; i++) {
        const float hit = origin[i] + dir[i] * fraction;
        if (i != axis && !(hit >= min[i] && hit <= max[i])) {
            return false;
        }
    }
    t = fraction;
    return true;
}

cBounds cBounds::Transform(const cBounds& bounds, const cMat4& m) {
    if (bounds.IsEmpty()) {
        return bounds;
    }
    cVec3 corners[8];
    bounds.ToPoints(corners);
    cVec3::TransformCoordinate(corners, 8, m);
    return FromPoints(corners, 8);
}

cBounds cBounds::Lerp(const cBounds& a, const cBounds& b, float t) {
    return {cVec3::Lerp(a.min, b.min, t), cVec3::Lerp(a.max, b.max, t)};
}

} // namespace trellis
