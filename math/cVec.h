// The general vector: N components of float or int.
#pragma once

#include "math/cMath.h"
#include "math/cVecOps.h"

#include <limits>
#include <type_traits>

namespace trellis {

/// `cVec<T, N> v;` leaves the components alone, `cVec<T, N>()` is zero.
template <class T, int N> class cVec : public cVecOps<cVec<T, N>, T> {
    static_assert(N >= 1 && N <= 4 && (std::is_same_v<T, float> || std::is_same_v<T, int>));

public:
    static constexpr int Size = N;

    constexpr cVec() = default;
    template <class... Args>
    requires(sizeof...(Args) == N && (std::is_convertible_v<Args, T> && ...)) constexpr explicit(N == 1)
        cVec(Args... args)
        : v{T(args)...} {}

    template <class F> static constexpr cVec Map(const cVec& a, F f) {
        cVec r{};
        for (int i = 0; i < N; i++) {
            r.v[i] = f(a.v[i]);
        }
        return r;
    }
    template <class F> static constexpr cVec Zip(const cVec& a, const cVec& b, F f) {
        cVec r{};
        for (int i = 0; i < N; i++) {
            r.v[i] = f(a.v[i], b.v[i]);
        }
        return r;
    }
    template <class F> static constexpr T Sum(const cVec& a, const cVec& b, F f) {
        T sum = f(a.v[0], b.v[0]);
        for (int i = 1; i < N; i++) {
            sum += f(a.v[i], b.v[i]);
        }
        return sum;
    }

    friend constexpr bool operator==(const cVec& a, const cVec& b) {
        for (int i = 0; i < N; i++) {
            if (!(a.v[i] == b.v[i])) {
                return false;
            }
        }
        return true;
    }

    constexpr T& operator[](int i) { return v[i]; }
    constexpr const T& operator[](int i) const { return v[i]; }
    constexpr T* ToPtr() { return v; }
    constexpr const T* ToPtr() const { return v; }

    T v[N];

    static const cVec ZERO;
    static const cVec UNDEFINED; ///< Stands for "no value": the largest int or float in each component.

private:
    static constexpr cVec All(T value) {
        return Map(cVec{}, [value](T) { return value; });
    }
};

template <class T, int N> inline constexpr cVec<T, N> cVec<T, N>::ZERO = cVec<T, N>::All(0);
template <class T, int N>
inline constexpr cVec<T, N> cVec<T, N>::UNDEFINED = cVec<T, N>::All(std::numeric_limits<T>::max());

} // namespace trellis
