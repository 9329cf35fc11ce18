#include "animation/cSegBezier.h"

#include "foundation/cList.h"
#include "math/cBounds.h"
#include "math/cSeg.h"

#include <algorithm>
#include <cmath>

namespace trellis {

template <class V> V cSegBezier<V>::GetValue(float t) const {
    const Weights w(t);
    return Points[0] * w.W[0] + Points[1] * w.W[1] + Points[2] * w.W[2] + Points[3] * w.W[3];
}

template <class V> V cSegBezier<V>::GetDerivative(float t) const {
    const float tt = t * t;
    return Points[0] * (6 * t - 3 - 3 * tt) + Points[1] * (3 - 12 * t + 9 * tt) + Points[2] * (6 * t - 9 * tt) +
           Points[3] * (3 * tt);
}

template <class V> void cSegBezier<V>::Split(cSegBezier* first, cSegBezier* second) const {
    const V middle = (Points[1] + Points[2]) * 0.5f;
    first->Points[0] = Points[0];
    first->Points[1] = (Points[0] + Points[1]) * 0.5f;
    first->Points[2] = (first->Points[1] + middle) * 0.5f;
    second->Points[3] = Points[3];
    second->Points[2] = (Points[2] + Points[3]) * 0.5f;
    second->Points[1] = (middle + second->Points[2]) * 0.5f;
    first->Points[3] = second->Points[0] = (first->Points[2] + second->Points[1]) * 0.5f;
}

template <class V> bool cSegBezier<V>::IsFlat(float maxErrSq) const {
    const V chord = Points[3] - Points[0];
    const float first = (Points[0] + chord * 0.33333334f - Points[1]).LengthSq();
    const float second = (Points[0] + chord * 0.6666667f - Points[2]).LengthSq();
    return maxErrSq >= std::max(first, second) || !std::isfinite(first + second);
}

template <class V>
float cSegBezier<V>::CalcClosestPointParameterAccurate(const V& point, float maxErrSq, float* distSq) const {
    struct Piece {
        cSegBezier Curve;
        float t0, t1;
    };
    static thread_local cList<Piece> s_Stack; // one for all calls, so that they do not allocate
    cList<Piece>& stack = s_Stack;
    stack.Clear();
    stack.EnsureCapacity(8, false);
    stack.Add({*this, 0, 1});

    const float startSq = V::DistanceSq(point, Points[0]), endSq = V::DistanceSq(point, Points[3]);
    float best = endSq < startSq ? endSq : startSq;
    float result = endSq < startSq ? 1.0f : 0.0f;
    while (!stack.IsEmpty()) {
        const Piece piece = stack[stack.Count() - 1];
        stack.SetCount(stack.Count() - 1);
        const cSegBezier& curve = piece.Curve;
        if (!(cBounds::FromPoints(curve.Points, 4).DistanceToPointSq(point) < best)) {
            continue;
        }
        if (piece.t1 - piece.t0 < MinPiece || curve.IsFlat(maxErrSq)) {
            cSeg chord;
            chord.SetFromEnds(curve.Points[0], curve.Points[3], 0.001f);
            const float u = chord.ProjectPoint(cSeg::Segment, point);
            const float chordSq = V::DistanceSq(point, chord.GetPoint(u));
            if (chordSq < best) {
                best = chordSq;
                result = piece.t0 + u * (piece.t1 - piece.t0);
            }
            continue;
        }
        const float middle = (piece.t0 + piece.t1) * 0.5f;
        Piece halves[2] = {{{}, piece.t0, middle}, {{}, middle, piece.t1}};
        curve.Split(&halves[0].Curve, &halves[1].Curve);
        // The more promising one on top: a good distance early spares most of the rest.
        const bool isEndNearer = V::DistanceSq(point, curve.Points[3]) < V::DistanceSq(point, curve.Points[0]);
        stack.Add(halves[isEndNearer ? 0 : 1]);
        stack.Add(halves[isEndNearer ? 1 : 0]);
    }
    if (distSq) {
        *distSq = best;
    }
    return result;
}

template class cSegBezier<cVec3>;

} // namespace trellis
