#include "math/cVec3.h"

#include "foundation/cList.h"
#include "math/cAngles.h"
#include "math/cMat4.h"
#include "math/cVec4.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace trellis {

namespace {

bool Assign(float* to, float value) {
    const bool changes = *to != value;
    *to = value;
    return changes;
}

#if defined(__SSE2__)

/// One coordinate of four points, with the additions in the order of the plain form, so that the bits agree.
__m128 Column(__m128 x, __m128 y, __m128 z, const cMat4& m, int column, float translation) {
    const __m128 sum = _mm_add_ps(_mm_mul_ps(x, _mm_set1_ps(m.m[column])), _mm_mul_ps(y, _mm_set1_ps(m.m[4 + column])));
    return _mm_add_ps(_mm_add_ps(sum, _mm_mul_ps(z, _mm_set1_ps(m.m[8 + column]))), _mm_set1_ps(translation));
}

/// Transforms as many points as make whole fours. @return their number
int TransformFours(cVec3* p, int n, const cMat4& m_, const cVec3& translation) {
    const cMat4 m = m_;
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        float* f = p[i].ToPtr();
        const __m128 a = _mm_loadu_ps(f);     // x0 y0 z0 x1
        const __m128 b = _mm_loadu_ps(f + 4); // y1 z1 x2 y2
        const __m128 c = _mm_loadu_ps(f + 8); // z2 x3 y3 z3
        const __m128 ab = _mm_shuffle_ps(a, b, _MM_SHUFFLE(1, 0, 2, 1));
        const __m128 bc = _mm_shuffle_ps(b, c, _MM_SHUFFLE(2, 1, 3, 2));
        const __m128 x = _mm_shuffle_ps(a, bc, _MM_SHUFFLE(2, 0, 3, 0));
        const __m128 y = _mm_shuffle_ps(ab, bc, _MM_SHUFFLE(3, 1, 2, 0));
        const __m128 z = _mm_shuffle_ps(ab, c, _MM_SHUFFLE(3, 0, 3, 1));
        const __m128 tx = Column(x, y, z, m, 0, translation.x);
        const __m128 ty = Column(x, y, z, m, 1, translation.y);
        const __m128 tz = Column(x, y, z, m, 2, translation.z);
        const __m128 xy = _mm_shuffle_ps(tx, ty, _MM_SHUFFLE(2, 0, 2, 0));
        const __m128 yz = _mm_shuffle_ps(ty, tz, _MM_SHUFFLE(3, 1, 3, 1));
        const __m128 zx = _mm_shuffle_ps(tz, tx, _MM_SHUFFLE(3, 1, 2, 0));
        _mm_storeu_ps(f, _mm_shuffle_ps(xy, zx, _MM_SHUFFLE(2, 0, 2, 0)));
        _mm_storeu_ps(f + 4, _mm_shuffle_ps(yz, xy, _MM_SHUFFLE(3, 1, 2, 0)));
        _mm_storeu_ps(f + 8, _mm_shuffle_ps(zx, yz, _MM_SHUFFLE(3, 1, 3, 1)));
    }
    return i;
}

#else

int TransformFours(cVec3*, int, const cMat4&, const cVec3&) {
    return 0;
}

#endif

} // namespace

cVec3& cVec3::operator=(const cVec4& v) {
    return *this = cVec3(v.x / v.w, v.y / v.w, v.z / v.w);
}

cAngles cVec3::ToAngles() const {
    const float pitch = cMath::ArcSin(y);
    const bool vertical = pitch >= 90 || pitch <= -90;
    return {pitch, vertical ? 0 : cMath::ArcTan2(-x, -z), 0};
}

void cVec3::ToPerps(cVec3& a, cVec3& b) const {
    const cVec3 self = *this; // the outputs may be this vector
    a = self.ToPerp();
    b = Normalize(Cross(self, a));
}

cVec3 cVec3::ToPerp() const {
    // The axis that this vector leans to least gives the longest cross product.
    const float ax = std::fabs(x), ay = std::fabs(y), az = std::fabs(z);
    const cVec3& axis = ax <= ay && ax <= az ? AxisX : ay <= az ? AxisY : AxisZ;
    return Normalize(Cross(*this, axis));
}

bool cVec3::FixDegenerateNormal() {
    float* v = ToPtr();
    for (int i = 0; i < 3; i++) {
        float& other1 = v[(i + 1) % 3];
        float& other2 = v[(i + 2) % 3];
        if (other1 == 0 && other2 == 0) {
            return Assign(&v[i], std::signbit(v[i]) ? -1.0f : 1.0f);
        }
        if (v[i] == 1 || v[i] == -1) {
            const bool first = Assign(&other1, 0);
            return Assign(&other2, 0) || first;
        }
    }
    return false;
}

bool cVec3::FixDenormals() {
    bool changed = false;
    for (int i = 0; i < 3; i++) {
        float& v = ToPtr()[i];
        const float size = std::fabs(v);
        if (size <= cMath::Epsilon) {
            changed |= Assign(&v, 0);
        } else if (std::fabs(size - 1) <= cMath::Epsilon) {
            changed |= Assign(&v, v < 0 ? -1.0f : 1.0f);
        }
    }
    return changed;
}

cVec3 cVec3::Slerp(const cVec3& a, const cVec3& b, float t) {
    if (t <= 0) {
        return a;
    }
    if (t >= 1) {
        return b;
    }
    const float d = Dot(a, b);
    if (!(1 - d > cMath::Epsilon)) {
        return a * (1 - t) + b * t;
    }
    const float theta = d <= -1 ? cMath::Pi : std::acos(d);
    const float sine = std::sin(theta);
    return a * (std::sin((1 - t) * theta) / sine) + b * (std::sin(t * theta) / sine);
}

void cVec3::TransformCoordinate(cVec3* p, int n, const cMat4& m) {
    const cMat4 a = m; // p may overlap it for all the compiler knows
    for (int i = TransformFours(p, n, a, a.GetTranslation()); i < n; i++) {
        p[i] = p[i] * a;
    }
}

void cVec3::TransformCoordinate(cList<cVec3>* p, const cMat4& m) {
    TransformCoordinate(p->Data(), p->Count(), m);
}

void cVec3::TransformNormal(cVec3* p, int n, const cMat4& m) {
    const cMat3 a = m.ToMat3();
    // Adding a translation of -0 changes no bit of any sum.
    for (int i = TransformFours(p, n, m, -Zero); i < n; i++) {
        p[i] = p[i] * a;
    }
}

void cVec3::TransformNormal(cList<cVec3>* p, const cMat4& m) {
    TransformNormal(p->Data(), p->Count(), m);
}

bool cVec3::RayTri(const cVec3& origin, const cVec3& dir, const cVec3& a, const cVec3& b, const cVec3& c, float* t,
                   float* u, float* v) {
    const cVec3 ab = b - a;
    const cVec3 ac = c - a;
    const cVec3 p = Cross(dir, ac);
    const float determinant = Dot(ab, p);
    if (!(std::fabs(determinant) > 0.000001f)) {
        return false;
    }
    const float scale = 1.0f / determinant;
    const cVec3 fromA = origin - a;
    const float weightB = Dot(fromA, p) * scale;
    const cVec3 q = Cross(fromA, ab);
    const float weightC = Dot(dir, q) * scale;
    if (!(weightB >= 0 && weightC >= 0 && weightB + weightC <= 1)) {
        return false;
    }
    if (t) {
        *t = Dot(ac, q) * scale;
    }
    if (u) {
        *u = weightB;
    }
    if (v) {
        *v = weightC;
    }
    return true;
}

bool cVec3::PointInTriangle(const cVec3& p, const cVec3& a, const cVec3& b, const cVec3& c) {
    const cVec3 ac = c - a, ab = b - a, ap = p - a;
    const float acac = Dot(ac, ac), acab = Dot(ac, ab), abab = Dot(ab, ab);
    const float acap = Dot(ac, ap), abap = Dot(ab, ap);
    const float scale =
        1.0f / (acac * abab - acab * acab); // no number for a triangle without area, which holds nothing
    const float u = (abab * acap - acab * abap) * scale;
    const float v = (acac * abap - acab * acap) * scale;
    return u >= 0 && v >= 0 && u + v < 1;
}

cVec3 cVec3::RandRange1() {
    return {cMath::RandRange1(), cMath::RandRange1(), cMath::RandRange1()}; // braces: from left to right
}

cVec3 cVec3::RandNormal() {
    for (;;) { // by rejection, so that the cube's corners get no more than their share
        const cVec3 v = RandRange1();
        const float lengthSq = v.LengthSq();
        if (lengthSq <= 1 && lengthSq > cMath::EpsilonSq) {
            return Normalize(v);
        }
    }
}

} // namespace trellis
