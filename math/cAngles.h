// Three angles in degrees, applied in the order X, Y, Z.
#pragma once

#include "math/cVec3.h"

namespace trellis {

class cMat3;
class cMat4;
class cQuat;

/// `cAngles a;` leaves the components alone, `cAngles()` is zero. All conversions go through `cMat3::RotationXYZ`.
class cAngles : public cVecOps<cAngles, float> {
public:
    static constexpr int Size = 3;

    constexpr cAngles() = default;
    constexpr cAngles(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}

    template <class F> static constexpr cAngles Map(const cAngles& a, F f) { return {f(a.x), f(a.y), f(a.z)}; }
    template <class F> static constexpr cAngles Zip(const cAngles& a, const cAngles& b, F f) {
        return {f(a.x, b.x), f(a.y, b.y), f(a.z, b.z)};
    }
    template <class F> static constexpr float Sum(const cAngles& a, const cAngles& b, F f) {
        return f(a.x, b.x) + f(a.y, b.y) + f(a.z, b.z);
    }

    void Normalize360(); ///< Each component into [0, 360).
    void Normalize180(); ///< Each component into (-180, 180].

    /// Brings `a` into (-180, 180] and moves each component of `b` by whole turns to within 180 degrees of it, so that
    /// going from one to the other takes the short way; `b` may end outside that range.
    static void EnsureShortestPath(cAngles* a, cAngles* b);

    cQuat ToQuat() const;
    cMat3 ToMat3() const;
    cMat4 ToMat4() const;
    void ToVectors(cVec3* forward, cVec3* right, cVec3* up) const; ///< Each may be null.
    cVec3 ToForward() const;
    cVec3 ToRight() const;
    cVec3 ToUp() const;

    friend constexpr bool operator==(const cAngles& a, const cAngles& b) = default;

    float& operator[](int i) { return ToPtr()[i]; }
    const float& operator[](int i) const { return ToPtr()[i]; }
    float* ToPtr() { return &x; }
    const float* ToPtr() const { return &x; }

    float x, y, z;

    static const cAngles Zero;
};

inline constexpr cAngles cAngles::Zero{0, 0, 0};

} // namespace trellis
