// Two floats, layout-compatible with cVec<float, 2>.
#pragma once

#include "math/cMath.h"
#include "math/cVec.h"
#include "math/cVecOps.h"

namespace trellis {

/// `cVec2 v;` leaves the components alone, `cVec2()` is zero.
class cVec2 : public cVecOps<cVec2, float> {
public:
    static constexpr int Size = 2;

    constexpr cVec2() = default;
    constexpr cVec2(float x_, float y_) : x(x_), y(y_) {}
    constexpr cVec2(const cVec<float, 2>& v) : x(v[0]), y(v[1]) {}
    constexpr operator cVec<float, 2>() const { return {x, y}; }

    template <class F> static constexpr cVec2 Map(const cVec2& a, F f) { return {f(a.x), f(a.y)}; }
    template <class F> static constexpr cVec2 Zip(const cVec2& a, const cVec2& b, F f) {
        return {f(a.x, b.x), f(a.y, b.y)};
    }
    template <class F> static constexpr float Sum(const cVec2& a, const cVec2& b, F f) {
        return f(a.x, b.x) + f(a.y, b.y);
    }

    /// The z of the cross product in space: above 0 when `b` lies to the left of `a`.
    static constexpr float Cross(const cVec2& a, const cVec2& b) { return a.x * b.y - a.y * b.x; }

    /// @param t  receives the fraction of the nearest point from `a` to `b`, in [0, 1]; may be null
    /// @return squared distance from this point to the segment; a zero segment counts as the point `a`
    float DistanceToLineSegSq(const cVec2& a, const cVec2& b, float* t = nullptr) const;

    /// Crossing of the segments `a0` to `a1` and `b0` to `b1`, ends included.
    ///
    /// @param point  receives the crossing; may be null
    /// @return false for segments that do not meet, and for parallel ones, which have no one crossing
    static bool SegIntersection(const cVec2& a0, const cVec2& a1, const cVec2& b0, const cVec2& b1, cVec2* point);

    static cVec2 RandRange1(); ///< Each component in [-1, 1).
    static cVec2 RandNormal(); ///< Unit length, every direction alike.

    friend constexpr bool operator==(const cVec2& a, const cVec2& b) = default;

    float& operator[](int i) { return ToPtr()[i]; }
    const float& operator[](int i) const { return ToPtr()[i]; }
    float* ToPtr() { return &x; }
    const float* ToPtr() const { return &x; }

    float x, y;

    static const cVec2 Zero, One, Infinity; ///< `Infinity` is the largest float in each component.
    static const cVec2 AxisX, AxisY, AxisNegX, AxisNegY;
};

inline constexpr cVec2 cVec2::Zero{0, 0};
inline constexpr cVec2 cVec2::One{1, 1};
inline constexpr cVec2 cVec2::Infinity{cMath::FloatMaxValue, cMath::FloatMaxValue};
inline constexpr cVec2 cVec2::AxisX{1, 0};
inline constexpr cVec2 cVec2::AxisY{0, 1};
inline constexpr cVec2 cVec2::AxisNegX{-1, 0};
inline constexpr cVec2 cVec2::AxisNegY{0, -1};

} // namespace trellis
