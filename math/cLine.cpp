#include "math/cLine.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

template <int N> using Real = cVec<float, N>;

/// b - a in float; differences of ints can exceed an int.
template <class T, int N> Real<N> Minus(const cVec<T, N>& b, const cVec<T, N>& a) {
    Real<N> d;
    for (int i = 0; i < N; i++) {
        d[i] = float(double(b[i]) - double(a[i])); // one rounding, as of float subtraction
    }
    return d;
}

template <class T, int N> cVec<T, N> ToPoint(const Real<N>& v) {
    if constexpr (std::is_same_v<T, int>) {
        cVec<int, N> p;
        for (int i = 0; i < N; i++) {
            p[i] = cMath::TruncateToInt(v[i]);
        }
        return p;
    } else {
        return v;
    }
}

template <class T, int N> Real<N> ToReal(const cVec<T, N>& p) {
    return Minus(p, cVec<T, N>::ZERO);
}

template <class T, int N> cVec<T, N> Between(const cVec<T, N>& a, const cVec<T, N>& b, float t) {
    return ToPoint<T, N>(ToReal(a) + Minus(b, a) * t);
}

Real<3> Cross(const Real<3>& a, const Real<3>& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

} // namespace

template <class T, int N> cLine<T, N>::cLine(const Point_t& a, const Point_t& b) requires(N == 3) {
    points.Add(a);
    points.Add(b);
}

template <class T, int N> float cLine<T, N>::Length(int i) const {
    return Minus(points[i + 1], points[i]).Length();
}

template <class T, int N> float cLine<T, N>::Length() const {
    float sum = 0;
    for (int i = 0; i + 1 < points.Count(); i++) {
        sum += Length(i);
    }
    return sum;
}

template <class T, int N> typename cLine<T, N>::Point_t cLine<T, N>::Point(float t) const {
    if (points.Count() == 2) {
        return Between(points[0], points[1], t);
    }
    const float total = Length();
    float done = 0;
    for (int i = 0; i + 1 < points.Count(); i++) {
        const float f = Length(i) / total;
        if (!(done + f < t)) {
            return Between(points[i], points[i + 1], (t - done) / f);
        }
        done += f;
    }
    return Point_t();
}

template <class T, int N>
typename cLine<T, N>::Point_t cLine<T, N>::NearestProjection(const Point_t& p, float* fraction, float* segmentParameter,
                                                             int* segment) const {
    Point_t best = Point_t::UNDEFINED;
    float bestDistanceSq = cMath::FloatMaxValue;
    float bestParameter = 0;
    int bestSegment = -1;
    for (int i = 0; i + 1 < points.Count(); i++) {
        const Point_t& a = points[i];
        const Point_t& b = points[i + 1];
        const Real<N> ab = Minus(b, a);
        const float d = ab.LengthSq();
        const float u = d < cMath::Epsilon ? 0.5f : Real<N>::Dot(Minus(p, a), ab) / d;
        const Point_t candidate = u < cMath::Epsilon ? a : u > 1 - cMath::Epsilon ? b : Between(a, b, u);
        const float distanceSq = Minus(candidate, p).LengthSq();
        if (distanceSq < bestDistanceSq) {
            best = candidate;
            bestDistanceSq = distanceSq;
            bestParameter = std::clamp(u, 0.0f, 1.0f);
            bestSegment = i;
        }
    }
    if (fraction) {
        float before = 0;
        for (int i = 0; i < bestSegment; i++) {
            before += Length(i);
        }
        const float total = Length();
        *fraction = bestSegment < 0 ? 0 : (before + Length(bestSegment) * bestParameter) / total;
    }
    if (segmentParameter) {
        *segmentParameter = bestParameter;
    }
    if (segment) {
        *segment = bestSegment;
    }
    return best;
}

template <class T, int N> cList<float> cLine<T, N>::Distances(const Point_t& p) const {
    cList<float> distances;
    distances.EnsureCapacity(points.Count(), false);
    for (const Point_t& point : points) {
        distances.Add(Minus(point, p).Length());
    }
    return distances;
}

template <class T, int N> typename cLine<T, N>::Point_t cLine<T, N>::Center() const requires(N == 3) {
    double sum[3] = {};
    for (const Point_t& point : points) {
        for (int i = 0; i < 3; i++) {
            sum[i] += point[i];
        }
    }
    const double count = points.Count();
    return ToPoint<T, 3>({float(sum[0] / count), float(sum[1] / count), float(sum[2] / count)});
}

template <class T, int N> typename cLine<T, N>::Point_t cLine<T, N>::Normal() const requires(N == 3) {
    const Point_t c = Center();
    const int count = points.Count();
    Real<3> a = Real<3>::ZERO;
    Real<3> b = Real<3>::ZERO;
    for (int k = 0; k < count / 2; k++) {
        a += Minus(points[k], c);
        b += Minus(points[count - 1 - k], c);
    }
    if (count % 2 != 0) {
        b += ToReal(points[count / 2]); // as it stands: see the header
    }
    return ToPoint<T, 3>(Real<3>::Normalize(Cross(a, b)));
}

template <class T, int N> cLine<T, N> cLine<T, N>::SortClockwise() const requires(N == 3) {
    cLine sorted(*this);
    sorted.points.Sort(CompareClockwise(Center(), Normal()));
    return sorted;
}

template <class T, int N> bool cLine<T, N>::CompareClockwise::operator()(const Point_t& a, const Point_t& b) const {
    if constexpr (N == 3) {
        return !(Real<3>::Dot(Cross(Minus(a, Center), Minus(b, Center)), ToReal(Normal)) < 0);
    } else {
        return true; // only loops in space turn
    }
}

template <class T, int N> void cLine<T, N>::Subdivide(int n) requires(N == 3) {
    if (n < 2 || points.Count() < 2) {
        return;
    }
    const float step = std::max(1.0f / float(n), 1.1920929e-7f);
    cList<Point_t> refined;
    for (int i = 0; i + 1 < points.Count(); i++) {
        const cLine piece(points[i], points[i + 1]);
        refined.Add(points[i]);
        for (float t = step; t < 1; t += step) {
            refined.Add(piece.Point(t));
        }
    }
    refined.Add(points[points.Count() - 1]);
    points = std::move(refined);
}

template class cLine<float, 1>;
template class cLine<float, 2>;
template class cLine<float, 3>;
template class cLine<float, 4>;
template class cLine<int, 1>;
template class cLine<int, 2>;
template class cLine<int, 3>;
template class cLine<int, 4>;

} // namespace trellis
