#include "math/cMat4.h"

#include "math/cAngles.h"
#include "math/cBounds.h"
#include "math/cQuat.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace trellis {

namespace {

/// Depth range of the perspective projections: rows 2 and 3 of the third column.
cMat4 MakePerspective(float fovY, float aspect, float m10, float m14) {
    const float t = std::tan(fovY * 0.5f * cMath::RadsPerDeg);
    return {1.0f / (aspect * t), 0, 0, 0, 0, 1.0f / t, 0, 0, 0, 0, m10, -1, 0, 0, m14, 0};
}

/// View matrix of an eye whose axes stand in the columns.
cMat4 MakeView(const cVec3& eye, const cVec3& right, const cVec3& up, const cVec3& back) {
    return {right.x,
            up.x,
            back.x,
            0,
            right.y,
            up.y,
            back.y,
            0,
            right.z,
            up.z,
            back.z,
            0,
            -cVec3::Dot(eye, right),
            -cVec3::Dot(eye, up),
            -cVec3::Dot(eye, back),
            1};
}

/// `a` between the translation that carries `point` to the origin and the one back.
cMat4 About(const cVec3& point, const cMat4& a) {
    return cMat4::Translation(-point) * a * cMat4::Translation(point);
}

constexpr cMat3 CubeOrientGL[6] = {
    {0, 0, -1, 0, -1, 0, -1, 0, 0}, {0, 0, 1, 0, -1, 0, 1, 0, 0},  {1, 0, 0, 0, 0, 1, 0, -1, 0},
    {1, 0, 0, 0, 0, -1, 0, 1, 0},   {1, 0, 0, 0, -1, 0, 0, 0, -1}, {-1, 0, 0, 0, -1, 0, 0, 0, 1},
};
constexpr cMat3 CubeOrientDX[6] = {
    {0, 0, 1, 0, -1, 0, 1, 0, 0},   {0, 0, -1, 0, -1, 0, -1, 0, 0}, {-1, 0, 0, 0, 0, 1, 0, 1, 0},
    {-1, 0, 0, 0, 0, -1, 0, -1, 0}, {-1, 0, 0, 0, -1, 0, 0, 0, 1},  {1, 0, 0, 0, -1, 0, 0, 0, -1},
};

} // namespace

cMat4 cMat4::RotationX(float angle) {
    return cMat4(cMat3::RotationX(angle));
}

cMat4 cMat4::RotationY(float angle) {
    return cMat4(cMat3::RotationY(angle));
}

cMat4 cMat4::RotationZ(float angle) {
    return cMat4(cMat3::RotationZ(angle));
}

cMat4 cMat4::RotationXYZ(float x, float y, float z) {
    return cMat4(cMat3::RotationXYZ(x, y, z));
}

cMat4 cMat4::RotationXYZ(const cAngles& angles) {
    return cMat4(cMat3::RotationXYZ(angles));
}

cMat4 cMat4::EulerZYX(float x, float y, float z) {
    return cMat4(cMat3::EulerZYX(x, y, z));
}

cMat4 cMat4::Rotation(const cVec3& axis, float angle) {
    return cMat4(cMat3::Rotation(axis, angle));
}

cMat4 cMat4::RotationAt(const cVec3& point, const cVec3& axis, float angle) {
    return About(point, Rotation(axis, angle));
}

cMat4 cMat4::RotationAt(const cVec2& point, float angle) {
    return About(cVec3(point, 0), RotationZ(angle));
}

cMat4 cMat4::ScalingAt(const cVec2& point, const cVec2& factors) {
    return About(cVec3(point, 0), Scaling(factors));
}

cMat4 cMat4::ScalingAt(const cVec3& point, const cVec3& factors) {
    return About(point, Scaling(factors));
}

cMat4 cMat4::Perspective(float fovY, float aspect, float zNear, float zFar) {
    return MakePerspective(fovY, aspect, (zFar + zNear) / (zNear - zFar), 2.0f * zNear * zFar / (zNear - zFar));
}

cMat4 cMat4::PerspectiveInf(float fovY, float aspect, float zNear) {
    return MakePerspective(fovY, aspect, 0.001f - 1.0f, (0.001f - 2.0f) * zNear);
}

cMat4 cMat4::Ortho(float width, float height, float zNear, float zFar) {
    const float depth = zNear - zFar;
    return {2.0f / width, 0, 0, 0, 0, 2.0f / height, 0, 0, 0, 0, 1.0f / depth, 0, 0, 0, zNear / depth, 1};
}

cMat4 cMat4::Ortho(float left, float right, float bottom, float top, float zNear, float zFar) {
    cMat4 a = Ortho(right - left, top - bottom, zNear, zFar);
    a.m[12] = (left + right) / (left - right);
    a.m[13] = (top + bottom) / (bottom - top);
    return a;
}

cMat4 cMat4::Ortho(const cBounds& bounds) {
    return Ortho(bounds.min[0], bounds.max[0], bounds.min[1], bounds.max[1], bounds.min[2], bounds.max[2]);
}

cMat4 cMat4::LookAtViewProjection(const cVec3& eye, const cVec3& target, float fovY, float aspect, float zNear,
                                  float zFar) {
    const cVec3 forward = cVec3::Normalize(target - eye);
    const cVec3 right = cVec3::Normalize(cVec3::Cross(forward, cVec3::AxisY));
    const cVec3 up = cVec3::Normalize(cVec3::Cross(right, forward));
    return MakeView(eye, right, up, -forward) * Perspective(fovY, aspect, zNear, zFar);
}

cMat4 cMat4::CubeViewProjection(const cVec3& eye, int face, float zFar, bool gl) {
    constexpr float zNear = 0.01f;
    const cMat3& orient = (gl ? CubeOrientGL : CubeOrientDX)[face];
    const cMat4 view = MakeView(eye, orient.GetRow(0), orient.GetRow(1), orient.GetRow(2));
    return view * cMat4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, (zNear + zFar) / (zNear - zFar), -1, 0, 0,
                        2.0f * zNear * zFar / (zNear - zFar), 0);
}

cMat4 cMat4::Transpose(const cMat4& a) {
    return {a.m[0], a.m[4], a.m[8],  a.m[12], a.m[1], a.m[5], a.m[9],  a.m[13],
            a.m[2], a.m[6], a.m[10], a.m[14], a.m[3], a.m[7], a.m[11], a.m[15]};
}

void cMat4::MultiplyPlain(const cMat4& a, const cMat4& b, cMat4* out) {
    cMat4 r;
    for (int i = 0; i < 4; i++) {
        for (int j = 0; j < 4; j++) {
            r.m[i * 4 + j] = a.m[i * 4] * b.m[j] + a.m[i * 4 + 1] * b.m[4 + j] + a.m[i * 4 + 2] * b.m[8 + j] +
                             a.m[i * 4 + 3] * b.m[12 + j];
        }
    }
    *out = r;
}

// Inverse by the 2 by 2 minors of the upper and the lower two rows (Laplace expansion): s from rows 0 and 1, c from
// rows 2 and 3, det = s0 c5 - s1 c4 + s2 c3 + s3 c2 - s4 c1 + s5 c0.
bool cMat4::InvertPlain(const cMat4& a, cMat4* out) {
    const float* m = a.m;
    const float s0 = m[0] * m[5] - m[4] * m[1], s1 = m[0] * m[6] - m[4] * m[2], s2 = m[0] * m[7] - m[4] * m[3];
    const float s3 = m[1] * m[6] - m[5] * m[2], s4 = m[1] * m[7] - m[5] * m[3], s5 = m[2] * m[7] - m[6] * m[3];
    const float c5 = m[10] * m[15] - m[14] * m[11], c4 = m[9] * m[15] - m[13] * m[11];
    const float c3 = m[9] * m[14] - m[13] * m[10], c2 = m[8] * m[15] - m[12] * m[11];
    const float c1 = m[8] * m[14] - m[12] * m[10], c0 = m[8] * m[13] - m[12] * m[9];
    const float determinant = s0 * c5 - s1 * c4 + s2 * c3 + s3 * c2 - s4 * c1 + s5 * c0;
    if (!(std::fabs(determinant) > cMath::MatrixInvertEpsilon)) {
        return false;
    }
    const float d = 1.0f / determinant;
    *out = {(m[5] * c5 - m[6] * c4 + m[7] * c3) * d,     (-m[1] * c5 + m[2] * c4 - m[3] * c3) * d,
            (m[13] * s5 - m[14] * s4 + m[15] * s3) * d,  (-m[9] * s5 + m[10] * s4 - m[11] * s3) * d,
            (-m[4] * c5 + m[6] * c2 - m[7] * c1) * d,    (m[0] * c5 - m[2] * c2 + m[3] * c1) * d,
            (-m[12] * s5 + m[14] * s2 - m[15] * s1) * d, (m[8] * s5 - m[10] * s2 + m[11] * s1) * d,
            (m[4] * c4 - m[5] * c2 + m[7] * c0) * d,     (-m[0] * c4 + m[1] * c2 - m[3] * c0) * d,
            (m[12] * s4 - m[13] * s2 + m[15] * s0) * d,  (-m[8] * s4 + m[9] * s2 - m[11] * s0) * d,
            (-m[4] * c3 + m[5] * c1 - m[6] * c0) * d,    (m[0] * c3 - m[1] * c1 + m[2] * c0) * d,
            (-m[12] * s3 + m[13] * s1 - m[14] * s0) * d, (m[8] * s3 - m[9] * s1 + m[10] * s0) * d};
    return true;
}

#if defined(__SSE2__)

void cMat4::Multiply(const cMat4& a, const cMat4& b, cMat4* out) {
    const __m128 b0 = _mm_loadu_ps(b.m), b1 = _mm_loadu_ps(b.m + 4);
    const __m128 b2 = _mm_loadu_ps(b.m + 8), b3 = _mm_loadu_ps(b.m + 12);
    __m128 rows[4];
    for (int i = 0; i < 4; i++) { // the additions in the order of the plain form, so that the bits agree
        const float* r = a.m + i * 4;
        const __m128 sum01 = _mm_add_ps(_mm_mul_ps(_mm_set1_ps(r[0]), b0), _mm_mul_ps(_mm_set1_ps(r[1]), b1));
        rows[i] = _mm_add_ps(_mm_add_ps(sum01, _mm_mul_ps(_mm_set1_ps(r[2]), b2)), _mm_mul_ps(_mm_set1_ps(r[3]), b3));
    }
    for (int i = 0; i < 4; i++) {
        _mm_storeu_ps(out->m + i * 4, rows[i]);
    }
}

#else

void cMat4::Multiply(const cMat4& a, const cMat4& b, cMat4* out) {
    MultiplyPlain(a, b, out);
}

#endif

bool cMat4::Invert(const cMat4& a, cMat4* out) {
    return InvertPlain(a, out);
}

void cMat4::SetRotation(const cAngles& angles) {
    const cMat3 r = angles.ToMat3();
    for (int i = 0; i < 3; i++) {
        for (int j = 0; j < 3; j++) {
            m[i * 4 + j] = r(i, j);
        }
    }
}

cAngles cMat4::GetRotation() const {
    return ToMat3().ToAngles();
}

cQuat cMat4::ToQuat() const {
    return ToMat3().ToQuat();
}

cMat3 cMat4::ToNormalMatrix() const {
    cMat3 inverse;
    return cMat3::Invert(ToMat3(), &inverse) ? cMat3::Transpose(inverse) : cMat3::Identity;
}

} // namespace trellis
