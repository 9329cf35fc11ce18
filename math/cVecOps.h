// The operators that all vectors share, written once over two primitives that each vector provides:
//
//     static V Map(a, f)         f of each component
//     static V Zip(a, b, f)      f of each pair of components
//     static T Sum(a, b, f)      the f of all pairs, added from the first on
#pragma once

#include "foundation/cStr.h"

#include <cmath>
#include <iosfwd>
#include <type_traits>

namespace trellis {

/// What every linear type has: sums, multiples, the dot product and length.
template <class V, class T> class cLinearOps {
public:
    friend constexpr V operator-(const V& a) {
        return V::Map(a, [](T p) { return T(-p); });
    }
    friend constexpr V operator+(const V& a, const V& b) {
        return V::Zip(a, b, [](T p, T q) { return T(p + q); });
    }
    friend constexpr V operator-(const V& a, const V& b) {
        return V::Zip(a, b, [](T p, T q) { return T(p - q); });
    }
    friend constexpr V operator*(const V& a, T s) {
        return V::Map(a, [s](T p) { return T(p * s); });
    }
    friend constexpr V operator*(T s, const V& a) { return a * s; }
    friend constexpr V operator/(const V& a, T s) {
        return V::Map(a, [s](T p) { return T(p / s); });
    }
    friend constexpr V& operator+=(V& a, const V& b) { return a = a + b; }
    friend constexpr V& operator-=(V& a, const V& b) { return a = a - b; }
    friend constexpr V& operator*=(V& a, T s) { return a = a * s; }
    friend constexpr V& operator/=(V& a, T s) { return a = a / s; }

    static constexpr T Dot(const V& a, const V& b) {
        return V::Sum(a, b, [](T p, T q) { return T(p * q); });
    }
    static constexpr V Min(const V& a, const V& b) {
        return V::Zip(a, b, [](T p, T q) { return q < p ? q : p; });
    }
    static constexpr V Max(const V& a, const V& b) {
        return V::Zip(a, b, [](T p, T q) { return p < q ? q : p; });
    }
    static constexpr V Lerp(const V& a, const V& b, T t) { return a + (b - a) * t; }
    static float Distance(const V& a, const V& b) { return (b - a).Length(); }
    static constexpr T DistanceSq(const V& a, const V& b) { return (b - a).LengthSq(); }

    constexpr T LengthSq() const { return Dot(Self(), Self()); }
    float Length() const { return std::sqrt(float(LengthSq())); }

    /// Scales to unit length; a zero vector stays zero. @return the former length
    float Normalize() {
        const float length = Length();
        if (length > 0) {
            static_cast<V&>(*this) /= T(length);
        }
        return length;
    }
    static V Normalize(V v) {
        v.Normalize();
        return v;
    }

    /// The components with that many digits behind the point, a blank between them.
    cStr ToString(int precision) const {
        if constexpr (std::is_same_v<T, int>) {
            return cStr::ToString(Self().ToPtr(), V::Size);
        } else {
            return cStr::ToString(Self().ToPtr(), V::Size, precision);
        }
    }

    friend cStr& operator<<(cStr& out, const V& v) { return out += v.ToString(TextPrecision); }
    template <class Traits>
    friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out, const V& v) {
        return out << v.ToString(TextPrecision).Text();
    }

    constexpr bool operator==(const cLinearOps&) const = default; // has no members of its own to compare

    static constexpr int TextPrecision = 6;

private:
    constexpr const V& Self() const { return static_cast<const V&>(*this); }
};

/// The same with the product and quotient by components, which quaternions do not have.
template <class V, class T> class cVecOps : public cLinearOps<V, T> {
public:
    friend constexpr V operator*(const V& a, const V& b) {
        return V::Zip(a, b, [](T p, T q) { return T(p * q); });
    }
    friend constexpr V operator/(const V& a, const V& b) {
        return V::Zip(a, b, [](T p, T q) { return T(p / q); });
    }
    friend constexpr V& operator*=(V& a, const V& b) { return a = a * b; }
    friend constexpr V& operator/=(V& a, const V& b) { return a = a / b; }

    constexpr bool operator==(const cVecOps&) const = default;
};

} // namespace trellis
