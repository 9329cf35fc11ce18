#include "math/cVec2.h"

#include <algorithm>

namespace trellis {

float cVec2::DistanceToLineSegSq(const cVec2& a, const cVec2& b, float* t) const {
    const cVec2 ab = b - a;
    const float lengthSq = ab.LengthSq();
    const float u = lengthSq > 0 ? std::clamp(Dot(*this - a, ab) / lengthSq, 0.0f, 1.0f) : 0;
    if (t) {
        *t = u;
    }
    return DistanceSq(*this, a + ab * u);
}

bool cVec2::SegIntersection(const cVec2& a0, const cVec2& a1, const cVec2& b0, const cVec2& b1, cVec2* point) {
    const cVec2 a = a1 - a0;
    const cVec2 b = b1 - b0;
    const cVec2 between = b0 - a0;
    const float determinant = Cross(a, b);
    if (determinant == 0) {
        return false;
    }
    const float s = Cross(between, b) / determinant;
    const float t = Cross(between, a) / determinant;
    if (!(s >= 0 && s <= 1 && t >= 0 && t <= 1)) {
        return false;
    }
    if (point) {
        *point = a0 + a * s;
    }
    return true;
}

cVec2 cVec2::RandRange1() {
    return {cMath::RandRange1(), cMath::RandRange1()}; // braces: from left to right
}

cVec2 cVec2::RandNormal() {
    for (;;) { // by rejection, so that the square's corners get no more than their share
        const cVec2 v = RandRange1();
        const float lengthSq = v.LengthSq();
        if (lengthSq <= 1 && lengthSq > cMath::EpsilonSq) {
            return Normalize(v);
        }
    }
}

} // namespace trellis
