// 3 by 3 matrix, row-major, for row vectors: v x M. The rows of a rotation are the frame's axes.
//
//     | m[0] m[1] m[2] |   right
//     | m[3] m[4] m[5] |   up
//     | m[6] m[7] m[8] |   minus forward
#pragma once

#include "math/cVec3.h"

namespace trellis {

class cAngles;
class cQuat;

/// `cMat3 m;` leaves the elements alone, `cMat3()` is zero. A product A x B applies A first.
class cMat3 {
public:
    constexpr cMat3() = default;
    constexpr cMat3(float m00, float m01, float m02, float m10, float m11, float m12, float m20, float m21, float m22)
        : m{m00, m01, m02, m10, m11, m12, m20, m21, m22} {}
    constexpr cMat3(const cVec3& row0, const cVec3& row1, const cVec3& row2)
        : m{row0.x, row0.y, row0.z, row1.x, row1.y, row1.z, row2.x, row2.y, row2.z} {}

    friend constexpr cMat3 operator*(const cMat3& a, const cMat3& b) {
        return {a.GetRow(0) * b, a.GetRow(1) * b, a.GetRow(2) * b};
    }
    friend constexpr cVec3 operator*(const cVec3& v, const cMat3& a) {
        return {v.x * a.m[0] + v.y * a.m[3] + v.z * a.m[6], v.x * a.m[1] + v.y * a.m[4] + v.z * a.m[7],
                v.x * a.m[2] + v.y * a.m[5] + v.z * a.m[8]};
    }
    friend constexpr cMat3& operator*=(cMat3& a, const cMat3& b) { return a = a * b; }
    friend constexpr bool operator==(const cMat3& a, const cMat3& b) = default;

    static cMat3 FromVectors(const cVec3& forward, const cVec3& right, const cVec3& up);
    void ToVectors(cVec3* forward, cVec3* right, cVec3* up) const; ///< Each may be null.

    /// Positive angles, in degrees, follow the right-hand rule.
    ///
    ///     RotationX          RotationY          RotationZ
    ///     | 1  0  0 |        | c  0 -s |        |  c  s  0 |
    ///     | 0  c  s |        | 0  1  0 |        | -s  c  0 |
    ///     | 0 -s  c |        | s  0  c |        |  0  0  1 |
    static cMat3 RotationX(float angle);
    static cMat3 RotationY(float angle);
    static cMat3 RotationZ(float angle);
    static cMat3 RotationXYZ(float x, float y, float z); ///< RotationX x RotationY x RotationZ.
    static cMat3 RotationXYZ(const cAngles& angles);
    static cMat3 Rotation(const cVec3& axis, float angle); ///< `axis` of unit length.

    /// The column-vector form of roll, pitch and yaw, for data that was made with it:
    ///
    ///     | cz cy   sx cz sy - cx sz   cx cz sy + sx sz |
    ///     | sz cy   cx cz + sx sz sy   cx sz sy - sx cz |
    ///     | -sy     sx cy              cy cx            |
    static cMat3 EulerZYX(float x, float y, float z);

    static constexpr cMat3 Scaling(float x, float y = 1, float z = 1) { return {x, 0, 0, 0, y, 0, 0, 0, z}; }
    static constexpr cMat3 Scaling(const cVec2& s) { return Scaling(s.x, s.y); }
    static constexpr cMat3 Scaling(const cVec3& s) { return Scaling(s.x, s.y, s.z); }

    /// Adjugate over determinant. `out` may be `a`.
    ///
    /// @return false for a determinant up to 1e-14 in size; `out` is then untouched
    static bool Invert(const cMat3& a, cMat3* out);
    static constexpr cMat3 Transpose(const cMat3& a) {
        return {a.m[0], a.m[3], a.m[6], a.m[1], a.m[4], a.m[7], a.m[2], a.m[5], a.m[8]};
    }
    constexpr float Determinant() const { return cVec3::Dot(GetRow(0), cVec3::Cross(GetRow(1), GetRow(2))); }

    /// Of an orthonormalised copy, row 0 first (Shoemake's method by the largest diagonal element).
    cQuat ToQuat() const;

    /// Inverse of `RotationXYZ` for rotations; y in [-90, 90], and z is 0 where y is at an end.
    cAngles ToAngles() const;

    constexpr cVec3 GetRow(int i) const { return {m[i * 3], m[i * 3 + 1], m[i * 3 + 2]}; }
    constexpr void SetRow(int i, const cVec3& v) {
        m[i * 3] = v.x;
        m[i * 3 + 1] = v.y;
        m[i * 3 + 2] = v.z;
    }
    constexpr float& operator()(int row, int column) { return m[row * 3 + column]; }
    constexpr float operator()(int row, int column) const { return m[row * 3 + column]; }
    float* ToPtr() { return m; }
    const float* ToPtr() const { return m; }

    float m[9];

    static const cMat3 Identity, Zero;
};

inline constexpr cMat3 cMat3::Identity{1, 0, 0, 0, 1, 0, 0, 0, 1};
inline constexpr cMat3 cMat3::Zero{0, 0, 0, 0, 0, 0, 0, 0, 0};

} // namespace trellis
