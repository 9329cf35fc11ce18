#include "math/cSeg.h"

#include <algorithm>

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

/// The distances along `a` and `b` of their closest points; `r` leads from b's start to a's.
void ClosestDistances(cSeg::ConsiderAs as, const cSeg& a, const cSeg& b, double* s, double* t) {
    const cVec3 r = a.start - b.start;
    const double along = cVec3::Dot(a.direction, b.direction);
    const double c = cVec3::Dot(a.direction, r);
    const double f = cVec3::Dot(b.direction, r);
    const double denominator = 1 - along * along;
    const bool parallel = denominator <= 1e-7; // below the noise of float directions
    *s = a.IsZero() ? 0 : b.IsZero() ? Clamp(as, a, -c) : parallel ? 0 : Clamp(as, a, (along * f - c) / denominator);
    if (b.IsZero()) {
        *t = 0;
        return;
    }
    const double wanted = along * *s + f;
    *t = Clamp(as, b, wanted);
    if (*t != wanted && !a.IsZero()) { // b ended first: go back to a's point nearest to that end
        *s = Clamp(as, a, along * *t - c);
    }
}

} // namespace

void cSeg::SetFromRay(const cVec3& origin, const cVec3& dir, float eps) {
    start = origin;
    direction = dir;
    length = direction.Normalize();
    if (!(length >= eps && length > 0)) {
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
    cVec3 onA, onB;
    ClosestPoints(as, a, b, onA, onB);
    return cVec3::Distance(onA, onB);
}

void cSeg::ClosestPoints(ConsiderAs as, const cSeg& a, const cSeg& b, cVec3& onA, cVec3& onB) {
    double s, t;
    ClosestDistances(as, a, b, &s, &t);
    onA = a.start + a.direction * float(s);
    onB = b.start + b.direction * float(t);
}

} // namespace trellis
