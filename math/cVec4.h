// Four floats, layout-compatible with cVec<float, 4>.
#pragma once

#include "math/cVec3.h"

namespace trellis {

/// `cVec4 v;` leaves the components alone, `cVec4()` is zero.
class cVec4 : public cVecOps<cVec4, float> {
public:
    static constexpr int Size = 4;

    constexpr cVec4() = default;
    constexpr cVec4(float x_, float y_, float z_, float w_) : x(x_), y(y_), z(z_), w(w_) {}
    constexpr cVec4(const cVec3& v, float w_) : x(v.x), y(v.y), z(v.z), w(w_) {}
    constexpr cVec4(const cVec<float, 4>& v) : x(v[0]), y(v[1]), z(v[2]), w(v[3]) {}
    constexpr operator cVec<float, 4>() const { return {x, y, z, w}; }

    /// Homogeneous: w becomes 1.
    constexpr cVec4& operator=(const cVec3& v) { return *this = cVec4(v, 1); }

    template <class F> static constexpr cVec4 Map(const cVec4& a, F f) { return {f(a.x), f(a.y), f(a.z), f(a.w)}; }
    template <class F> static constexpr cVec4 Zip(const cVec4& a, const cVec4& b, F f) {
        return {f(a.x, b.x), f(a.y, b.y), f(a.z, b.z), f(a.w, b.w)};
    }
    template <class F> static constexpr float Sum(const cVec4& a, const cVec4& b, F f) {
        return f(a.x, b.x) + f(a.y, b.y) + f(a.z, b.z) + f(a.w, b.w);
    }

    friend constexpr bool operator==(const cVec4& a, const cVec4& b) = default;

    float& operator[](int i) { return ToPtr()[i]; }
    const float& operator[](int i) const { return ToPtr()[i]; }
    float* ToPtr() { return &x; }
    const float* ToPtr() const { return &x; }
    constexpr cVec3 ToVec3() const { return {x, y, z}; } ///< Without the division.

    float x, y, z, w;

    static const cVec4 Zero, One, Infinity; ///< `Infinity` is the largest float in each component.
    static const cVec4 AxisX, AxisY, AxisZ, AxisW, AxisNegX, AxisNegY, AxisNegZ, AxisNegW;
};

inline constexpr cVec4 cVec4::Zero{0, 0, 0, 0};
inline constexpr cVec4 cVec4::One{1, 1, 1, 1};
inline constexpr cVec4 cVec4::Infinity{cVec3::Infinity, cMath::FloatMaxValue};
inline constexpr cVec4 cVec4::AxisX{1, 0, 0, 0};
inline constexpr cVec4 cVec4::AxisY{0, 1, 0, 0};
inline constexpr cVec4 cVec4::AxisZ{0, 0, 1, 0};
inline constexpr cVec4 cVec4::AxisW{0, 0, 0, 1};
inline constexpr cVec4 cVec4::AxisNegX{-1, 0, 0, 0};
inline constexpr cVec4 cVec4::AxisNegY{0, -1, 0, 0};
inline constexpr cVec4 cVec4::AxisNegZ{0, 0, -1, 0};
inline constexpr cVec4 cVec4::AxisNegW{0, 0, 0, -1};

} // namespace trellis
