#include "math/cMat3.h"

#include "math/cAngles.h"
#include "math/cQuat.h"

#include <utility>

namespace trellis {

namespace {

void Store(cVec3* out, const cVec3& v) {
    if (out) {
        *out = v;
    }
}

} // namespace

cMat3 cMat3::FromVectors(const cVec3& forward, const cVec3& right, const cVec3& up) {
    return {right, up, -forward};
}

void cMat3::ToVectors(cVec3* forward, cVec3* right, cVec3* up) const {
    Store(forward, -GetRow(2));
    Store(right, GetRow(0));
    Store(up, GetRow(1));
}

cMat3 cMat3::RotationX(float angle) {
    float s, c;
    cMath::SinCos(angle, &s, &c);
    return {1, 0, 0, 0, c, s, 0, -s, c};
}

cMat3 cMat3::RotationY(float angle) {
    float s, c;
    cMath::SinCos(angle, &s, &c);
    return {c, 0, -s, 0, 1, 0, s, 0, c};
}

cMat3 cMat3::RotationZ(float angle) {
    float s, c;
    cMath::SinCos(angle, &s, &c);
    return {c, s, 0, -s, c, 0, 0, 0, 1};
}

cMat3 cMat3::RotationXYZ(float x, float y, float z) {
    return RotationX(x) * RotationY(y) * RotationZ(z);
}

cMat3 cMat3::RotationXYZ(const cAngles& angles) {
    return RotationXYZ(angles.x, angles.y, angles.z);
}

cMat3 cMat3::Rotation(const cVec3& axis, float angle) {
    float s, c;
    cMath::SinCos(angle * 0.5f, &s, &c);
    return cQuat(axis * s, c).ToMat3();
}

cMat3 cMat3::EulerZYX(float x, float y, float z) {
    float sx, cx, sy, cy, sz, cz;
    cMath::SinCos(x, &sx, &cx);
    cMath::SinCos(y, &sy, &cy);
    cMath::SinCos(z, &sz, &cz);
    return {cz * cy,
            sx * cz * sy - cx * sz,
            cx * cz * sy + sx * sz, //
            sz * cy,
            cx * cz + sx * sz * sy,
            cx * sz * sy - sx * cz, //
            -sy,
            sx * cy,
            cy * cx};
}

bool cMat3::Invert(const cMat3& a, cMat3* out) {
    const cVec3 r0 = a.GetRow(0), r1 = a.GetRow(1), r2 = a.GetRow(2);
    const cVec3 c0 = cVec3::Cross(r1, r2); // columns of the adjugate
    const cVec3 c1 = cVec3::Cross(r2, r0);
    const cVec3 c2 = cVec3::Cross(r0, r1);
    const float determinant = cVec3::Dot(r0, c0);
    if (!(std::fabs(determinant) > cMath::MatrixInvertEpsilon)) {
        return false;
    }
    const float s = 1.0f / determinant;
    *out = {c0.x * s, c1.x * s, c2.x * s, c0.y * s, c1.y * s, c2.y * s, c0.z * s, c1.z * s, c2.z * s};
    return true;
}

cQuat cMat3::ToQuat() const {
    const cVec3 r0 = cVec3::Normalize(GetRow(0));
    const cVec3 r2 = cVec3::Normalize(cVec3::Cross(r0, GetRow(1)));
    const cVec3 r1 = cVec3::Normalize(cVec3::Cross(r2, r0));
    const cMat3 n(r0, r1, r2);

    cQuat q;
    const float trace = n(0, 0) + n(1, 1) + n(2, 2);
    if (trace > 0) {
        const float s = 0.5f / std::sqrt(trace + 1.0f);
        q = {(n.m[5] - n.m[7]) * s, (n.m[6] - n.m[2]) * s, (n.m[1] - n.m[3]) * s, (trace + 1.0f) * s};
        return q;
    }
    int i = n(1, 1) > n(0, 0) ? 1 : 0;
    i = n(2, 2) > n(i, i) ? 2 : i;
    const int j = (i + 1) % 3;
    const int k = (j + 1) % 3;
    const float r = n(i, i) - (n(j, j) + n(k, k)) + 1.0f;
    const float s = 0.5f / std::sqrt(r);
    float* v = q.ToPtr();
    v[i] = r * s;
    v[j] = (n(i, j) + n(j, i)) * s;
    v[k] = (n(i, k) + n(k, i)) * s;
    v[3] = (n(j, k) - n(k, j)) * s;
    return q;
}

cAngles cMat3::ToAngles() const {
    const float y = cMath::ArcSin(-m[2]);
    if (y >= 90) { // gimbal lock: x and z turn about the same axis, and x takes it all
        return {cMath::ArcTan2(m[3], m[4]), y, 0};
    }
    if (y <= -90) {
        return {cMath::ArcTan2(-m[3], m[4]), y, 0};
    }
    return {cMath::ArcTan2(m[5], m[8]), y, cMath::ArcTan2(m[1], m[0])};
}

} // namespace trellis
