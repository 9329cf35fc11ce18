#include "math/cSphere.h"

#include "math/cBounds.h"
#include "math/cMat3.h"
#include "math/cSeg.h"

#include <algorithm>
#include <cmath>

namespace trellis {

float cSphere::SignedDistanceToPlane(const cPlane& plane) const {
    const float d = plane.SignedDistance(center);
    return d > radius ? d - radius : d < -radius ? d + radius : 0;
}

bool cSphere::RayIntersection(const cVec3& origin, const cVec3& dir, float& t0, float& t1) const {
    const cVec3 fromCenter = origin - center;
    const float a = dir.LengthSq();
    const float halfB = cVec3::Dot(fromCenter, dir);
    const float c = fromCenter.LengthSq() - radius * radius;
    const float discriminant = halfB * halfB - a * c;
    if (!(a > 0 && discriminant >= 0)) {
        return false;
    }
    const float root = std::sqrt(discriminant);
    t0 = (-halfB - root) / a;
    t1 = (-halfB + root) / a;
    return true;
}

int cSphere::RayIntersection(const cSphere* spheres, int n, unsigned int stride, const cVec3& origin, const cVec3& dir,
                             float* t) {
    int nearest = -1;
    float nearestT = 0;
    const auto* item = reinterpret_cast<const unsigned char*>(spheres);
    for (int i = 0; i < n; i++, item += stride) {
        float t0, t1;
        if (!reinterpret_cast<const cSphere*>(item)->RayIntersection(origin, dir, t0, t1) || t1 < 0) {
            continue;
        }
        const float hit = t0 < 0 ? t1 : t0;
        if (nearest < 0 || hit < nearestT) {
            nearest = i;
            nearestT = hit;
        }
    }
    if (nearest >= 0 && t) {
        *t = nearestT;
    }
    return nearest;
}

bool cSphere::LineIntersection(const cVec3& a, const cVec3& b) const {
    const cSeg seg(a, b, 0.001f);
    return !seg.IsZero() && cSeg::Distance(cSeg::Segment, seg, center) < radius;
}

cSphere cSphere::FromPoints(const cVec3& a, const cVec3& b, const cVec3& c, const cVec3& d) {
    // The centre is as far from `a` as from each other point p: 2 (p - a) . x = |p - a|^2, with x seen from `a`.
    const cMat3 differences(b - a, c - a, d - a);
    cMat3 inverse;
    if (!cMat3::Invert(differences, &inverse)) {
        const cVec3 points[] = {a, b, c, d};
        return FromPoints(points, 4);
    }
    const cVec3 half = cVec3((b - a).LengthSq(), (c - a).LengthSq(), (d - a).LengthSq()) * 0.5f;
    const cVec3 x = half * cMat3::Transpose(inverse);
    return {a + x, x.Length()};
}

cSphere cSphere::FromPoints(const cVec3* points, int count) {
    if (count < 1) {
        return {cVec3::Zero, 0};
    }
    const cVec3 center = cBounds::FromPoints(points, count).Center();
    float radius = 0;
    for (int i = 0; i < count; i++) {
        radius = std::max(radius, cVec3::Distance(center, points[i]));
    }
    return {center, radius};
}

} // namespace trellis
