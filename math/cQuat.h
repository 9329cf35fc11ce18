// Quaternions, stored x, y, z, w, with Hamilton's product.
//
// Rotating v by q is q v q*, which is the row vector v times the matrix of q. So a matrix product A x B, which applies
// A first, belongs to the quaternion product qB * qA: a parent's orientation times a child's is parent * own.
#pragma once

#include "math/cVec3.h"

namespace trellis {

class cAngles;
class cMat3;
class cMat4;
class cRotation;

/// `cQuat q;` leaves the components alone, `cQuat()` is zero.
class cQuat : public cLinearOps<cQuat, float> {
public:
    static constexpr int Size = 4;

    constexpr cQuat() = default;
    constexpr cQuat(float x_, float y_, float z_, float w_) : x(x_), y(y_), z(z_), w(w_) {}
    constexpr cQuat(const cVec3& v, float w_) : x(v.x), y(v.y), z(v.z), w(w_) {}

    template <class F> static constexpr cQuat Map(const cQuat& a, F f) { return {f(a.x), f(a.y), f(a.z), f(a.w)}; }
    template <class F> static constexpr cQuat Zip(const cQuat& a, const cQuat& b, F f) {
        return {f(a.x, b.x), f(a.y, b.y), f(a.z, b.z), f(a.w, b.w)};
    }
    template <class F> static constexpr float Sum(const cQuat& a, const cQuat& b, F f) {
        return f(a.x, b.x) + f(a.y, b.y) + f(a.z, b.z) + f(a.w, b.w);
    }

    /// Hamilton's product: `b` is applied first.
    friend constexpr cQuat operator*(const cQuat& a, const cQuat& b) {
        return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y, a.w * b.y + a.y * b.w + a.z * b.x - a.x * b.z,
                a.w * b.z + a.z * b.w + a.x * b.y - a.y * b.x, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
    }
    friend constexpr cQuat& operator*=(cQuat& a, const cQuat& b) { return a = a * b; }

    constexpr cQuat Conjugate() const { return {-x, -y, -z, w}; }
    static constexpr cQuat Invert(const cQuat& q) { ///< The zero quaternion has none and stays as it is.
        const float lengthSq = q.LengthSq();
        return lengthSq >= cMath::FloatMinValue ? q.Conjugate() / lengthSq : q;
    }
    static cVec3 Rotate(const cVec3& v, const cQuat& q); ///< q v q*, for a unit quaternion.

    cAngles ToAngles() const;
    /// Scales by 2 / squared length, so any length from 1e-19 to 1e19 will do; a smaller one gives the identity.
    cMat3 ToMat3() const;
    cMat4 ToMat4() const;
    cRotation ToRotation() const; ///< Angle in [0, 360] and axis; about the X axis when there is no rotation.

    /// Unit axis times the half angle acos(w), in radians: half of `cRotation`'s, being the logarithm.
    cVec3 ToAngularVelocity() const;

    /// Component by component, normalised; with `shortest` the end is negated when it lies on the far side.
    static cQuat Lerp(const cQuat& a, const cQuat& b, float t, bool shortest = true);

    /// Along the arc, always the short way: the flag is there for the symmetry with `Lerp`. Not normalised, so that the
    /// ends come out as they went in (Shoemake, "Animating Rotation with Quaternion Curves").
    static cQuat Slerp(const cQuat& a, const cQuat& b, float t, bool shortest = true);

    /// The exponential of a pure quaternion and the logarithm of a unit one: (v a, 0) against (v sin a, cos a).
    static cQuat Exp(const cQuat& q);
    static cQuat Ln(const cQuat& q);
    static cQuat LnDif(const cQuat& a, const cQuat& b); ///< Ln(a* b).

    /// Spherical cubic from `p` to `q` (Shoemake, "Quaternion Calculus and Fast Animation").
    ///
    /// @param a  the inner point behind `p`, of `SquadSetup` around `p`
    /// @param b  the inner point ahead of `q`
    static cQuat Squad(const cQuat& p, const cQuat& a, const cQuat& b, const cQuat& q, float t);

    /// Inner point at `current` for a curve through three unit quaternions: q exp(-(ln(q* n) + ln(q* p)) / 4), with n
    /// the next and p the previous one. Neighbours lie on one side: their dot products are not below 0.
    static cQuat SquadSetup(const cQuat& previous, const cQuat& current, const cQuat& next);

    friend constexpr bool operator==(const cQuat& a, const cQuat& b) = default;

    float& operator[](int i) { return ToPtr()[i]; }
    const float& operator[](int i) const { return ToPtr()[i]; }
    float* ToPtr() { return &x; }
    const float* ToPtr() const { return &x; }
    constexpr cVec3 ToVec3() const { return {x, y, z}; } ///< The vector part.

    float x, y, z, w;

    static const cQuat Identity, Zero;
};

inline constexpr cQuat cQuat::Identity{0, 0, 0, 1};
inline constexpr cQuat cQuat::Zero{0, 0, 0, 0};

} // namespace trellis
