// Three floats, layout-compatible with cVec<float, 3>. Right-handed space, Y up; things face along -Z.
#pragma once

#include "math/cMath.h"
#include "math/cVec.h"
#include "math/cVec2.h"
#include "math/cVecOps.h"

namespace trellis {

class cAngles;
class cMat4;
class cVec4;
template <class T, class Container> class cList;

/// `cVec3 v;` leaves the components alone, `cVec3()` is zero.
class cVec3 : public cVecOps<cVec3, float> {
public:
    static constexpr int Size = 3;

    constexpr cVec3() = default;
    constexpr cVec3(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}
    constexpr cVec3(const cVec2& v, float z_) : x(v.x), y(v.y), z(z_) {}
    constexpr cVec3(const cVec<float, 3>& v) : x(v[0]), y(v[1]), z(v[2]) {}
    constexpr operator cVec<float, 3>() const { return {x, y, z}; }

    /// Homogeneous: each of x, y, z divided by w.
    cVec3& operator=(const cVec4& v);

    template <class F> static constexpr cVec3 Map(const cVec3& a, F f) { return {f(a.x), f(a.y), f(a.z)}; }
    template <class F> static constexpr cVec3 Zip(const cVec3& a, const cVec3& b, F f) {
        return {f(a.x, b.x), f(a.y, b.y), f(a.z, b.z)};
    }
    template <class F> static constexpr float Sum(const cVec3& a, const cVec3& b, F f) {
        return f(a.x, b.x) + f(a.y, b.y) + f(a.z, b.z);
    }

    static constexpr cVec3 Cross(const cVec3& a, const cVec3& b) {
        return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    }

    /// Pitch and yaw, in degrees, of a thing that faces along this unit vector; z is 0. Inverse of
    /// `cAngles::ToForward`; straight up or down the yaw is 0.
    cAngles ToAngles() const;

    /// Two unit vectors perpendicular to this one and to each other; zero for a zero vector.
    void ToPerps(cVec3& a, cVec3& b) const;
    cVec3 ToPerp() const; ///< The first of those.

    /// Makes a normal that stands along an axis exactly so: with two components exactly 0 the third becomes +1 or -1,
    /// with one exactly +1 or -1 the others become 0. A zero vector becomes `AxisX`. @return whether anything changed
    bool FixDegenerateNormal();

    /// Snaps components up to 0.001 to 0, and those within 0.001 of +1 or -1 to it. @return whether anything changed
    bool FixDenormals();

    /// Along the arc between unit vectors; `t` at or beyond 0 and 1 gives the ends. Nearly equal ones go linearly.
    static cVec3 Slerp(const cVec3& a, const cVec3& b, float t);

    /// Whole arrays in place, p x M. Points get the translation, normals do not; nothing is divided by w.
    static void TransformCoordinate(cVec3* p, int n, const cMat4& m);
    static void TransformCoordinate(cList<cVec3, cList_Container<cVec3>>* p, const cMat4& m);
    static void TransformNormal(cVec3* p, int n, const cMat4& m);
    static void TransformNormal(cList<cVec3, cList_Container<cVec3>>* p, const cMat4& m);

    /// Ray against a triangle, from either side (Möller and Trumbore, "Fast, Minimum Storage Ray/Triangle
    /// Intersection"). A ray whose determinant is within 0.000001 of 0 runs along the triangle and misses.
    ///
    /// @param t  receives the distance in lengths of `dir`, negative behind the origin; may be null
    /// @param u  receives the weight of `b`; may be null
    /// @param v  receives the weight of `c`; may be null
    static bool RayTri(const cVec3& origin, const cVec3& dir, const cVec3& a, const cVec3& b, const cVec3& c, float* t,
                       float* u = nullptr, float* v = nullptr);

    /// Barycentric test of a point in the triangle's plane: the edges from `a` belong to it, the one facing `a` does
    /// not.
    static bool PointInTriangle(const cVec3& p, const cVec3& a, const cVec3& b, const cVec3& c);

    static cVec3 RandRange1(); ///< Each component in [-1, 1).
    static cVec3 RandNormal(); ///< Unit length, every direction alike.

    friend constexpr bool operator==(const cVec3& a, const cVec3& b) = default;

    float& operator[](int i) { return ToPtr()[i]; }
    const float& operator[](int i) const { return ToPtr()[i]; }
    float* ToPtr() { return &x; }
    const float* ToPtr() const { return &x; }
    constexpr cVec2 ToVec2() const { return {x, y}; }

    float x, y, z;

    static const cVec3 Zero, One, Infinity; ///< `Infinity` is the largest float in each component.
    static const cVec3 AxisX, AxisY, AxisZ, AxisNegX, AxisNegY, AxisNegZ; ///< `AxisY` is the world's up.
};

inline constexpr cVec3 cVec3::Zero{0, 0, 0};
inline constexpr cVec3 cVec3::One{1, 1, 1};
inline constexpr cVec3 cVec3::Infinity{cMath::FloatMaxValue, cMath::FloatMaxValue, cMath::FloatMaxValue};
inline constexpr cVec3 cVec3::AxisX{1, 0, 0};
inline constexpr cVec3 cVec3::AxisY{0, 1, 0};
inline constexpr cVec3 cVec3::AxisZ{0, 0, 1};
inline constexpr cVec3 cVec3::AxisNegX{-1, 0, 0};
inline constexpr cVec3 cVec3::AxisNegY{0, -1, 0};
inline constexpr cVec3 cVec3::AxisNegZ{0, 0, -1};

} // namespace trellis
