// Polyline in one to four dimensions, over int or float. Every measure is computed anew.
#pragma once

#include "foundation/cList.h"
#include "math/cMath.h"
#include "math/cVec.h"

namespace trellis {

/// Coordinates are combined in floating point and truncated on the way back to int.
template <class T, int N> class cLine {
public:
    using Point_t = cVec<T, N>;

    cLine() = default;
    cLine(const cLine&) = default;
    cLine& operator=(const cLine&) = default;
    cLine(const Point_t& a, const Point_t& b) requires(N == 3);
    virtual ~cLine() = default;

    float Length(int i) const; ///< From point `i` to the next; `i` is trusted.
    float Length() const;      ///< Over all segments; 0 for fewer than two points.

    /// The point at the fraction `t` of the length. Two points extrapolate outside [0, 1]; otherwise a `t` past the
    /// end, as on fewer than two points, gives zero. Where a segment of no length takes `t`, and on a line of no
    /// length, there is no number.
    Point_t Point(float t) const;

    /// The nearest point of the line; the first of equals. The outputs may be null.
    ///
    /// @param fraction          receives the fraction of the whole length; no number on a line of no length
    /// @param segmentParameter  receives the fraction along the segment. Within 0.001 of an end the point snaps to that
    ///                          end and the parameter stays; a segment shorter than about 0.03 counts by its middle
    /// @param segment           receives the segment's index
    /// @return `UNDEFINED`, with 0, 0 and -1, when there is no segment
    Point_t NearestProjection(const Point_t& p, float* fraction = nullptr, float* segmentParameter = nullptr,
                              int* segment = nullptr) const;

    cList<float> Distances(const Point_t& p) const; ///< From `p` to each of the points, in their order.

    Point_t Center() const requires(N == 3); ///< Mean of the points; no number for an empty line.

    /// Unit normal of the closed loop. With an odd count the middle point goes in as it stands, not seen from the
    /// centre; the sense of sorted loops depends on it.
    Point_t Normal() const requires(N == 3);

    /// The same points sorted around the centre, against the turn of the normal: a comes ahead of b when
    /// ((a - c) x (b - c)) . n < 0.
    cLine SortClockwise() const requires(N == 3);

    /// Puts `n` - 1 points (one more at times: the parameter is added up in float) into each segment; below 2 nothing.
    void Subdivide(int n) requires(N == 3);

    /// The order of `SortClockwise`, for `cList::Sort`.
    class CompareClockwise : public cList<Point_t>::CompareFunctor {
    public:
        CompareClockwise(const Point_t& center, const Point_t& normal) : Center(center), Normal(normal) {}
        bool operator()(const Point_t& a, const Point_t& b) const override;

        Point_t Center;
        Point_t Normal;
    };

    cList<Point_t> points;
};

extern template class cLine<float, 1>;
extern template class cLine<float, 2>;
extern template class cLine<float, 3>;
extern template class cLine<float, 4>;
extern template class cLine<int, 1>;
extern template class cLine<int, 2>;
extern template class cLine<int, 3>;
extern template class cLine<int, 4>;

} // namespace trellis
