// Box by two corners, in two or three dimensions of int or float. A box whose min is above its max is empty.
#pragma once

#include "math/cVec.h"

namespace trellis {

template <class T, int N> class Bounds {
    static_assert(N == 2 || N == 3);

public:
    Bounds() = default;
    constexpr Bounds(const cVec<T, N>& min_, const cVec<T, N>& max_) : min(min_), max(max_) {}
    constexpr Bounds(const Bounds&) = default;
    constexpr Bounds& operator=(const Bounds&) = default;
    constexpr virtual ~Bounds() {}

    constexpr bool IsEmpty() const {
        for (int i = 0; i < N; i++) {
            if (!(min[i] <= max[i])) {
                return true;
            }
        }
        return false;
    }

    /// Whether the point lies in the box, its faces included.
    constexpr bool ContainsPoint(const cVec<T, N>& p) const {
        for (int i = 0; i < N; i++) {
            if (!(min[i] <= p[i] && p[i] <= max[i])) {
                return false;
            }
        }
        return true;
    }

    /// Whether the segment from `a` to `b` touches the box (the slab test of Kay and Kajiya, in double precision).
    bool ContainsLine(const cVec<T, N>& a, const cVec<T, N>& b) const {
        if (IsEmpty()) {
            return false;
        }
        double enter = 0;
        double leave = 1;
        for (int i = 0; i < N; i++) {
            const double along = double(b[i]) - double(a[i]);
            const double toMin = double(min[i]) - double(a[i]);
            const double toMax = double(max[i]) - double(a[i]);
            if (along != along || toMin != toMin || (along == 0 && (toMin > 0 || toMax < 0))) { // NaN touches nothing
                return false;
            }
            if (along != 0) {
                const double t0 = (along > 0 ? toMin : toMax) / along;
                const double t1 = (along > 0 ? toMax : toMin) / along;
                enter = t0 > enter ? t0 : enter;
                leave = t1 < leave ? t1 : leave;
            }
        }
        return enter <= leave;
    }

    /// Grows just enough to hold the point. On an empty box of the extreme corners it gives the point alone.
    constexpr void Add(const cVec<T, N>& p) {
        min = cVec<T, N>::Min(min, p);
        max = cVec<T, N>::Max(max, p);
    }

    constexpr cVec<T, N> Size() const { return max - min; }
    constexpr cVec<T, N> Center() const { return (min + max) / T(2); }

    friend constexpr bool operator==(const Bounds& a, const Bounds& b) { return a.min == b.min && a.max == b.max; }

    cVec<T, N> min, max;
};

} // namespace trellis
