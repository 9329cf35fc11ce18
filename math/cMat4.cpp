#include "math/cMat4.h"

#include "math/cAngles.h"
#include "math/cBounds.h"
#include "math/cQuat.h"

namespace trellis {

namespace {

/// A perspective projection; `m10` and `m14`, in the third column, set the range of its depth.
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

// Inverse by Laplace expansion over the 2 by 2 minors of the upper two rows (s) and the lower two (c). Element (i, j)
// of the adjugate takes the elements of row j ^ 1 and the minors of the other pair of rows:
//
//     | +(1 5 - 2 4 + 3 3)  -...  +...  -... |      a pair "column, minor" stands for m[row][column] times the minor
//     | -(0 5 - 2 2 + 3 1)                   |      numbered 0 (columns 01), 1 (02), 2 (03), 3 (12), 4 (13), 5 (23);
//     | +(0 4 - 1 2 + 3 0)                   |      rows 1, 0 go with c and rows 3, 2 with s
//     | -(0 3 - 1 1 + 2 0)                   |
bool cMat4::InvertPlain(const cMat4& a, cMat4* out) {
    constexpr int pairs[6][2] = {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}};
    constexpr int terms[4][3][2] = {
        {{1, 5}, {2, 4}, {3, 3}}, {{0, 5}, {2, 2}, {3, 1}}, {{0, 4}, {1, 2}, {3, 0}}, {{0, 3}, {1, 1}, {2, 0}}};
    float minors[2][6]; // of rows 2 and 3, of rows 0 and 1
    for (int k = 0; k < 6; k++) {
        const int i = pairs[k][0], j = pairs[k][1];
        minors[0][k] = a(2, i) * a(3, j) - a(3, i) * a(2, j);
        minors[1][k] = a(0, i) * a(1, j) - a(1, i) * a(0, j);
    }
    cMat4 adjugate; // without the signs
    for (int i = 0; i < 4; i++) {
        for (int j = 0; j < 4; j++) {
            const auto product = [&](int t) { return a(j ^ 1, terms[i][t][0]) * minors[j / 2][terms[i][t][1]]; };
            adjugate(i, j) = product(0) - product(1) + product(2);
        }
    }
    const float determinant =
        a(0, 0) * adjugate(0, 0) - a(0, 1) * adjugate(1, 0) + a(0, 2) * adjugate(2, 0) - a(0, 3) * adjugate(3, 0);
    if (!(std::fabs(determinant) > cMath::MatrixInvertEpsilon)) {
        return false;
    }
    const float scale = 1.0f / determinant;
    for (int i = 0; i < 4; i++) {
        for (int j = 0; j < 4; j++) {
            (*out)(i, j) = adjugate(i, j) * ((i + j) % 2 == 0 ? scale : -scale);
        }
    }
    return true;
}

#if defined(__SSE2__)

namespace {

/// A minor of two columns, (c, c, s, s); `upper` holds rows 2, 2, 0, 0 of a column and `lower` rows 3, 3, 1, 1.
__m128 Minor(__m128 upperI, __m128 lowerI, __m128 upperJ, __m128 lowerJ) {
    return _mm_sub_ps(_mm_mul_ps(upperI, lowerJ), _mm_mul_ps(lowerI, upperJ));
}

/// A column with its rows in that order.
template <int A, int B, int C, int D> __m128 Rows(__m128 column) {
    return _mm_shuffle_ps(column, column, _MM_SHUFFLE(D, C, B, A));
}

__m128 Expand(__m128 a, __m128 minorA, __m128 b, __m128 minorB, __m128 c, __m128 minorC) {
    return _mm_add_ps(_mm_sub_ps(_mm_mul_ps(a, minorA), _mm_mul_ps(b, minorB)), _mm_mul_ps(c, minorC));
}

} // namespace

bool cMat4::Invert(const cMat4& a, cMat4* out) {
    __m128 c0 = _mm_loadu_ps(a.m), c1 = _mm_loadu_ps(a.m + 4), c2 = _mm_loadu_ps(a.m + 8), c3 = _mm_loadu_ps(a.m + 12);
    _MM_TRANSPOSE4_PS(c0, c1, c2, c3);
    const __m128 u0 = Rows<2, 2, 0, 0>(c0), l0 = Rows<3, 3, 1, 1>(c0);
    const __m128 u1 = Rows<2, 2, 0, 0>(c1), l1 = Rows<3, 3, 1, 1>(c1);
    const __m128 u2 = Rows<2, 2, 0, 0>(c2), l2 = Rows<3, 3, 1, 1>(c2);
    const __m128 u3 = Rows<2, 2, 0, 0>(c3), l3 = Rows<3, 3, 1, 1>(c3);
    const __m128 m0 = Minor(u0, l0, u1, l1), m1 = Minor(u0, l0, u2, l2), m2 = Minor(u0, l0, u3, l3);
    const __m128 m3 = Minor(u1, l1, u2, l2), m4 = Minor(u1, l1, u3, l3), m5 = Minor(u2, l2, u3, l3);
    const __m128 e0 = Rows<1, 0, 3, 2>(c0), e1 = Rows<1, 0, 3, 2>(c1);
    const __m128 e2 = Rows<1, 0, 3, 2>(c2), e3 = Rows<1, 0, 3, 2>(c3);
    const __m128 row0 = Expand(e1, m5, e2, m4, e3, m3);
    const __m128 row1 = Expand(e0, m5, e2, m2, e3, m1);
    const __m128 row2 = Expand(e0, m4, e1, m2, e3, m0);
    const __m128 row3 = Expand(e0, m3, e1, m1, e2, m0);
    const float determinant = a.m[0] * _mm_cvtss_f32(row0) - a.m[1] * _mm_cvtss_f32(row1) +
                              a.m[2] * _mm_cvtss_f32(row2) - a.m[3] * _mm_cvtss_f32(row3);
    if (!(std::fabs(determinant) > cMath::MatrixInvertEpsilon)) {
        return false;
    }
    const float scale = 1.0f / determinant;
    const __m128 even = _mm_setr_ps(scale, -scale, scale, -scale);
    const __m128 odd = _mm_setr_ps(-scale, scale, -scale, scale);
    _mm_storeu_ps(out->m, _mm_mul_ps(row0, even));
    _mm_storeu_ps(out->m + 4, _mm_mul_ps(row1, odd));
    _mm_storeu_ps(out->m + 8, _mm_mul_ps(row2, even));
    _mm_storeu_ps(out->m + 12, _mm_mul_ps(row3, odd));
    return true;
}

#else

bool cMat4::Invert(const cMat4& a, cMat4* out) {
    return InvertPlain(a, out);
}

#endif

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
