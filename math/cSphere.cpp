#include "math/cSphere.h"

#include "math/cBounds.h"
#include "math/cSeg.h"

#include <algorithm>
#include <cmath>

namespace trellis {

float cSphere::SignedDistanceToPlane(const cPlane& plane) const {
    const float d = plane.SignedDistance(center);
    return d > radius ? d - radius : d < -radius ? d + radius : 0;
}

bool cSphere::RayIntersection(const cVec3& origin, const cVec3& dir, float& t0, float& t1) const {
    // In double: from far away the discriminant is a small difference of large squares.
    double a = 0;
    double halfB = 0;
    double c = -double(radius) * radius;
    for (int i = 0; i < 3; i++) {
        const double fromCenter = double(origin[i]) - center[i];
        a += double(dir[i]) * dir[i];
        halfB += fromCenter * dir[i];
        c += fromCenter * fromCenter;
    }
    const double discriminant = halfB * halfB - a * c;
    if (!(a > 0 && discriminant >= 0)) {
        return false;
    }
    const double root = std::sqrt(discriminant);
    t0 = float((-halfB - root) / a);
    t1 = float((-halfB + root) / a);
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
    // The centre x, seen from `a`, is as far from `a` as from each other point p: 2 (p - a) . x = |p - a|^2. Solved by
    // Cramer's rule in double, then tried: nearly coplanar points leave nothing but noise in the determinant.
    const cVec3 points[] = {a, b, c, d};
    double m[3][3];
    double half[3];
    for (int i = 0; i < 3; i++) {
        half[i] = 0;
        for (int k = 0; k < 3; k++) {
            m[i][k] = double(points[i + 1][k]) - a[k];
            half[i] += m[i][k] * m[i][k] * 0.5;
        }
    }
    const auto determinant = [&m, &half](int replaced) { // column `replaced` by the right side; -1: none
        const auto e = [&](int i, int k) { return k == replaced ? half[i] : m[i][k]; };
        return e(0, 0) * (e(1, 1) * e(2, 2) - e(1, 2) * e(2, 1)) - e(0, 1) * (e(1, 0) * e(2, 2) - e(1, 2) * e(2, 0)) +
               e(0, 2) * (e(1, 0) * e(2, 1) - e(1, 1) * e(2, 0));
    };
    const double whole = determinant(-1);
    const cVec3 x(float(determinant(0) / whole), float(determinant(1) / whole), float(determinant(2) / whole));
    const cVec3 center = a + x;
    const cSphere around = FromPoints(points, 4);
    float nearest = cMath::FloatMaxValue;
    float farthest = 0;
    for (const cVec3& p : points) {
        const float r = cVec3::Distance(center, p);
        if (!std::isfinite(r)) {
            return around;
        }
        nearest = std::min(nearest, r);
        farthest = std::max(farthest, r);
    }
    // A huge sphere is the noise of points in one plane, and float cannot tell its distances apart.
    const bool through = farthest <= 1e3f * around.radius && farthest - nearest <= 1e-3f * around.radius;
    return through ? cSphere(center, farthest) : around;
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
