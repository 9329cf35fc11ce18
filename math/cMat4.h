// 4 by 4 matrix, row-major, for row vectors: v x M. The translation stands in row 3.
//
//     | m[0]  m[1]  m[2]  m[3]  |   right
//     | m[4]  m[5]  m[6]  m[7]  |   up
//     | m[8]  m[9]  m[10] m[11] |   minus forward
//     | m[12] m[13] m[14] m[15] |   translation
#pragma once

#include "math/cMat3.h"
#include "math/cVec4.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace trellis {

class cAngles;
class cBounds;
class cQuat;

/// `cMat4 m;` leaves the elements alone, `cMat4()` is zero. A product A x B applies A first.
class cMat4 {
public:
    constexpr cMat4() = default;
    constexpr cMat4(float m00, float m01, float m02, float m03, float m10, float m11, float m12, float m13, float m20,
                    float m21, float m22, float m23, float m30, float m31, float m32, float m33)
        : m{m00, m01, m02, m03, m10, m11, m12, m13, m20, m21, m22, m23, m30, m31, m32, m33} {}
    constexpr explicit cMat4(const cMat3& a, const cVec3& translation = cVec3::Zero)
        : m{a.m[0], a.m[1], a.m[2], 0, a.m[3],        a.m[4],        a.m[5],        0,
            a.m[6], a.m[7], a.m[8], 0, translation.x, translation.y, translation.z, 1} {}

    friend cMat4 operator*(const cMat4& a, const cMat4& b) {
        cMat4 r;
        Multiply(a, b, &r);
        return r;
    }
    friend cMat4& operator*=(cMat4& a, const cMat4& b) { return a = a * b; }
    friend constexpr cVec4 operator*(const cVec4& v, const cMat4& a) {
        return {v.x * a.m[0] + v.y * a.m[4] + v.z * a.m[8] + v.w * a.m[12],
                v.x * a.m[1] + v.y * a.m[5] + v.z * a.m[9] + v.w * a.m[13],
                v.x * a.m[2] + v.y * a.m[6] + v.z * a.m[10] + v.w * a.m[14],
                v.x * a.m[3] + v.y * a.m[7] + v.z * a.m[11] + v.w * a.m[15]};
    }
    /// A point, with the translation; nothing is divided by w.
    friend constexpr cVec3 operator*(const cVec3& p, const cMat4& a) {
        return {p.x * a.m[0] + p.y * a.m[4] + p.z * a.m[8] + a.m[12],
                p.x * a.m[1] + p.y * a.m[5] + p.z * a.m[9] + a.m[13],
                p.x * a.m[2] + p.y * a.m[6] + p.z * a.m[10] + a.m[14]};
    }
    friend constexpr bool operator==(const cMat4& a, const cMat4& b) = default;

    static cMat4 RotationX(float angle);
    static cMat4 RotationY(float angle);
    static cMat4 RotationZ(float angle);
    static cMat4 RotationXYZ(float x, float y, float z);
    static cMat4 RotationXYZ(const cAngles& angles);
    static cMat4 EulerZYX(float x, float y, float z);
    static cMat4 Rotation(const cVec3& axis, float angle); ///< `axis` of unit length.
    static cMat4 RotationAt(const cVec3& point, const cVec3& axis, float angle);
    static cMat4 RotationAt(const cVec2& point, float angle); ///< About the Z axis through the point.

    static constexpr cMat4 Scaling(float x, float y = 1, float z = 1) { return cMat4(cMat3::Scaling(x, y, z)); }
    static constexpr cMat4 Scaling(const cVec2& s) { return Scaling(s.x, s.y); }
    static constexpr cMat4 Scaling(const cVec3& s) { return Scaling(s.x, s.y, s.z); }
    static cMat4 ScalingAt(const cVec2& point, const cVec2& factors);
    static cMat4 ScalingAt(const cVec3& point, const cVec3& factors);
    static constexpr cMat4 Translation(float x, float y, float z = 0) { return Translation(cVec3(x, y, z)); }
    static constexpr cMat4 Translation(const cVec2& v) { return Translation(v.x, v.y); }
    static constexpr cMat4 Translation(const cVec3& v) { return cMat4(cMat3::Identity, v); }

    /// Clip space has depth from -1 to 1. With t = tan(fovY / 2), n = zNear, f = zFar:
    ///
    ///     | 1/(aspect t)  0    0                0 |
    ///     | 0             1/t  0                0 |
    ///     | 0             0    (f+n) / (n-f)   -1 |
    ///     | 0             0    2 f n / (n-f)    0 |
    ///
    /// @param fovY  whole vertical angle, degrees
    static cMat4 Perspective(float fovY, float aspect, float zNear, float zFar);

    /// The same without a far plane; 0.001 keeps the depth of far things inside the range (Lengyel, "Projection Matrix
    /// Tricks"): m[10] = 0.001 - 1, m[14] = (0.001 - 2) n.
    static cMat4 PerspectiveInf(float fovY, float aspect, float zNear);

    /// Parallel; depth from 0 to 1, unlike `Perspective`: interface drawing relies on it.
    ///
    ///     | 2/width  0         0           0 |
    ///     | 0        2/height  0           0 |
    ///     | 0        0         1 / (n-f)   0 |
    ///     | 0        0         n / (n-f)   1 |
    static cMat4 Ortho(float width, float height, float zNear, float zFar);
    static cMat4 Ortho(float left, float right, float bottom, float top, float zNear, float zFar);
    static cMat4 Ortho(const cBounds& bounds); ///< Near is min.z, far is max.z.

    /// View times projection for an eye that looks at a target with the world's up. A target straight above or below
    /// degenerates it.
    static cMat4 LookAtViewProjection(const cVec3& eye, const cVec3& target, float fovY, float aspect, float zNear,
                                      float zFar);

    /// One face of a cube map seen from `eye`: 90 degrees, aspect 1, near plane 0.01.
    ///
    /// @param face  in [0, 5]
    /// @param gl    true: the faces look along +X, -X, +Y, -Y, +Z, -Z. False: each looks the opposite way, for devices
    ///              with left-handed cube maps
    static cMat4 CubeViewProjection(const cVec3& eye, int face, float zFar, bool gl);

    /// Cofactors over determinant. `out` may be `a`.
    ///
    /// @return false for a determinant up to 1e-14 in size; `out` is then untouched
    static bool Invert(const cMat4& a, cMat4* out);
    static cMat4 Transpose(const cMat4& a);

    /// The product; `out` may be a factor.
    static void Multiply(const cMat4& a, const cMat4& b, cMat4* out);

    /// The same two without SSE2, to the bit.
    static void MultiplyPlain(const cMat4& a, const cMat4& b, cMat4* out);
    static bool InvertPlain(const cMat4& a, cMat4* out);

    void SetRotation(const cAngles& angles); ///< Writes the upper 3 by 3.
    cAngles GetRotation() const;
    void SetTranslation(const cVec3& v) {
        m[12] = v.x;
        m[13] = v.y;
        m[14] = v.z;
    }
    constexpr cVec3 GetTranslation() const { return {m[12], m[13], m[14]}; }
    cQuat ToQuat() const;
    constexpr cMat3 ToMat3() const { return {m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10]}; }

    /// For normals: the upper 3 by 3, inverted and transposed; the identity when it has no inverse.
    cMat3 ToNormalMatrix() const;

    constexpr cVec4 GetRow(int i) const { return {m[i * 4], m[i * 4 + 1], m[i * 4 + 2], m[i * 4 + 3]}; }
    constexpr float& operator()(int row, int column) { return m[row * 4 + column]; }
    constexpr float operator()(int row, int column) const { return m[row * 4 + column]; }
    float* ToPtr() { return m; }
    const float* ToPtr() const { return m; }

    float m[16];

    static const cMat4 Identity, Zero;
};

#if defined(__SSE2__)

inline void cMat4::Multiply(const cMat4& a, const cMat4& b, cMat4* out) {
    const __m128 b0 = _mm_loadu_ps(b.m), b1 = _mm_loadu_ps(b.m + 4);
    const __m128 b2 = _mm_loadu_ps(b.m + 8), b3 = _mm_loadu_ps(b.m + 12);
    for (int i = 0; i < 16; i += 4) { // the additions in the order of the plain form, so that the bits agree
        const __m128 row = _mm_loadu_ps(a.m + i);
        const __m128 p0 = _mm_mul_ps(_mm_shuffle_ps(row, row, _MM_SHUFFLE(0, 0, 0, 0)), b0);
        const __m128 p1 = _mm_mul_ps(_mm_shuffle_ps(row, row, _MM_SHUFFLE(1, 1, 1, 1)), b1);
        const __m128 p2 = _mm_mul_ps(_mm_shuffle_ps(row, row, _MM_SHUFFLE(2, 2, 2, 2)), b2);
        const __m128 p3 = _mm_mul_ps(_mm_shuffle_ps(row, row, _MM_SHUFFLE(3, 3, 3, 3)), b3);
        _mm_storeu_ps(out->m + i, _mm_add_ps(_mm_add_ps(_mm_add_ps(p0, p1), p2), p3));
    }
}

#else

inline void cMat4::Multiply(const cMat4& a, const cMat4& b, cMat4* out) {
    MultiplyPlain(a, b, out);
}

#endif

inline constexpr cMat4 cMat4::Identity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
inline constexpr cMat4 cMat4::Zero{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

} // namespace trellis
