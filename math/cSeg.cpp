#include "math/cSeg.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

/// A distance along the segment brought into what it is taken for.
double Clamp(cSeg::ConsiderAs as, const cSeg& seg, double s) {
    switch (as) {
    case cSeg::Segment:
        return std::clamp(s, 0.0, double(seg.length));
    case cSeg::Ray:
        return std::max(s, 0.0);
    case cSeg::Line:
        break;
    }
    return s;
}

double DotInDouble(const cVec3& a, const cVec3& b) {
    return double(a.x) * b.x + double(a.y) * b.y + double(a.z) * b.z;
}

/// The distances along `a` and `b` of their closest points. In double, and with the squares of the directions: in float
/// the sine of a small angle between them is all noise.
void ClosestDistances(cSeg::ConsiderAs asA, const cSeg& a, cSeg::ConsiderAs asB, const cSeg& b, double* s, double* t) {
    double r[3]; // from b's start to a's
    for (int i = 0; i < 3; i++) {
        r[i] = double(a.start[i]) - b.start[i];
    }
    const double c = a.direction.x * r[0] + a.direction.y * r[1] + a.direction.z * r[2];
    const double f = b.direction.x * r[0] + b.direction.y * r[1] + b.direction.z * r[2];
    const double aa = DotInDouble(a.direction, a.direction);
    const double bb = DotInDouble(b.direction, b.direction);
    const double along = DotInDouble(a.direction, b.direction);
    const double denominator = aa * bb - along * along;
    const bool parallel = denominator <= 1e-13;
    *s = a.IsZero()   ? 0
         : b.IsZero() ? Clamp(asA, a, -c / aa)
         : parallel   ? 0
                      : Clamp(asA, a, (along * f - c * bb) / denominator);
    if (b.IsZero()) {
        *t = 0;
        return;
    }
    const double wanted = (along * *s + f) / bb;
    *t = Clamp(asB, b, wanted);
    if (*t != wanted && !a.IsZero()) { // b ended first: go back to a's point nearest to that end
        *s = Clamp(asA, a, (along * *t - c) / aa);
    }
}

} // namespace

void cSeg::SetFromRay(const cVec3& origin, const cVec3& dir, float eps) {
    start = origin;
    direction = dir;
    length = direction.Normalize();
    if (!(length >= eps && length > 0 && std::isfinite(length))) {
        direction = cVec3::Zero;
        length = 0;
    }
}

float cSeg::ProjectPoint(ConsiderAs as, const cVec3& p) const {
    if (IsZero()) {
        return 0;
    }
    return float(Clamp(as, *this, cVec3::Dot(p - start, direction)) / length);
}

float cSeg::Distance(ConsiderAs as, const cSeg& seg, const cVec3& p) {
    return cVec3::Distance(p, seg.GetPoint(seg.ProjectPoint(as, p)));
}

float cSeg::Distance(ConsiderAs as, const cSeg& a, const cSeg& b) {
    double s, t;
    ClosestDistances(as, a, as, b, &s, &t);
    double sum = 0;
    for (int i = 0; i < 3; i++) { // rounded once: the points of lines nearly parallel lie far out
        const double d = double(a.start[i]) - b.start[i] + s * a.direction[i] - t * b.direction[i];
        sum += d * d;
    }
    return float(std::sqrt(sum));
}

void cSeg::ClosestPoints(ConsiderAs as, const cSeg& a, const cSeg& b, cVec3& onA, cVec3& onB) {
    ClosestPoints(as, a, as, b, onA, onB);
}

void cSeg::ClosestPoints(ConsiderAs asA, const cSeg& a, ConsiderAs asB, const cSeg& b, cVec3& onA, cVec3& onB) {
    double s, t;
    ClosestDistances(asA, a, asB, b, &s, &t);
    onA = a.start + a.direction * float(s);
    onB = b.start + b.direction * float(t);
}

} // namespace trellis
