#include "animation/cSpline.h"

#include "math/cSeg.h"
#include "math/cSphere.h"

#include <algorithm>
#include <cmath>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace trellis {

namespace {

constexpr int s_Steps = 100;
constexpr float s_Step = 0.01f;

/// Where a segment is measured, and what its points weigh there.
struct Steps {
    constexpr Steps() {
        float t = 0;
        for (int i = 0; i < s_Steps; i++) {
            T[i] = t;
            t += s_Step; // added up, as lengths always were; multiples would give other last bits
            const cSegBezier<cVec3>::Weights w(t);
            for (int k = 0; k < 4; k++) {
                W[k][i] = w.W[k];
            }
        }
        T[s_Steps] = t;
        T[s_Steps + 1] = 1;
    }
    float T[s_Steps + 2]{};            // from 0 to 1
    alignas(16) float W[4][s_Steps]{}; // at T[1] to T[s_Steps]
};
constexpr Steps s_At;
static_assert(s_At.T[s_Steps] < 1, "a hundred steps stay behind the end, and one more piece leads up to it");

/// Distances between the points at all of `s_At.T`: s_Steps + 1 of them.
void MeasureSteps(const cSegBezier<cVec3>& curve, float* lengths) {
    float at[3][s_Steps + 1];
    for (int axis = 0; axis < 3; axis++) {
        const float p[4] = {curve.Points[0][axis], curve.Points[1][axis], curve.Points[2][axis], curve.Points[3][axis]};
        float* out = at[axis];
        *out++ = p[0];
#ifdef __SSE2__
        static_assert(s_Steps % 4 == 0);
        const __m128 p0 = _mm_set1_ps(p[0]), p1 = _mm_set1_ps(p[1]), p2 = _mm_set1_ps(p[2]), p3 = _mm_set1_ps(p[3]);
        for (int i = 0; i < s_Steps; i += 4) {
            const __m128 a = _mm_mul_ps(p0, _mm_load_ps(s_At.W[0] + i)), b = _mm_mul_ps(p1, _mm_load_ps(s_At.W[1] + i));
            const __m128 c = _mm_mul_ps(p2, _mm_load_ps(s_At.W[2] + i)), d = _mm_mul_ps(p3, _mm_load_ps(s_At.W[3] + i));
            _mm_storeu_ps(out + i, _mm_add_ps(_mm_add_ps(_mm_add_ps(a, b), c), d));
        }
#else
        for (int i = 0; i < s_Steps; i++) {
            out[i] = p[0] * s_At.W[0][i] + p[1] * s_At.W[1][i] + p[2] * s_At.W[2][i] + p[3] * s_At.W[3][i];
        }
#endif
    }
    const auto point = [&at](int k) { return cVec3(at[0][k], at[1][k], at[2][k]); };
#ifdef __SSE2__
    for (int i = 0; i < s_Steps; i += 4) {
        __m128 d[3];
        for (int axis = 0; axis < 3; axis++) {
            d[axis] = _mm_sub_ps(_mm_loadu_ps(at[axis] + i + 1), _mm_loadu_ps(at[axis] + i));
            d[axis] = _mm_mul_ps(d[axis], d[axis]);
        }
        _mm_storeu_ps(lengths + i, _mm_sqrt_ps(_mm_add_ps(_mm_add_ps(d[0], d[1]), d[2])));
    }
#else
    for (int i = 0; i < s_Steps; i++) {
        lengths[i] = cVec3::Distance(point(i), point(i + 1));
    }
#endif
    lengths[s_Steps] = cVec3::Distance(point(s_Steps), curve.Points[3]);
}

/// Into [0, 1]; what is no number gives 0.
float Saturate(float v) {
    return v > 0 ? std::min(v, 1.0f) : 0;
}

} // namespace

int cSpline::ClosestPointRef::Cmp(const ClosestPointRef* a, const ClosestPointRef* b) {
    return a->MinDistSq < b->MinDistSq ? -1 : a->MinDistSq > b->MinDistSq;
}

void cSpline::CustomCtor() {
    SetUniformSampledNodeCount = 10;
    SetAdaptiveSampledMaxErrSq = 100;
    Segments.Clear();
}

void cSpline::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.AddButton(&cSpline::Edit, "&cSpline::Edit");
    members.AddObject(Transform, "Transform");
    members.AddButton(&cSpline::CenterTransform, "&cSpline::CenterTransform");
    members.AddObject(Nodes, "Nodes");
    members.Add<_cBool>(Closed, "Closed");
    members.AddSeparator("");
    members.AddButton(&cSpline::SetUniformSampled, "&cSpline::SetUniformSampled");
    members.Add<_cInt>(SetUniformSampledNodeCount, "SetUniformSampledNodeCount");
    members.AddButton(&cSpline::SetAdaptiveSampled, "&cSpline::SetAdaptiveSampled");
    members.Add<_cFloat>(SetAdaptiveSampledMaxErrSq, "SetAdaptiveSampledMaxErrSq");
}

cStr cSpline::ToString() {
    cClass* parent = GetParent();
    const char* list = parent ? parent->GetClassName() : nullptr;
    if (list && cStr::Compare(list, "cClassList.cSpline") == 0) {
        return cStr::Format("%d. Spline", IndexOfThis() + 1);
    }
    return "Spline";
}

bool cSpline::FullCopy(void* src, void* srcExtra, cClass* dstClass, void* dst, void* dstExtra,
                       cClassCopyContext* context) {
    const bool isCopied = cClass::FullCopy(src, srcExtra, dstClass, dst, dstExtra, context);
    if (auto* spline = dynamic_cast<cSpline*>(static_cast<cClass*>(dst))) {
        spline->Segments.Clear();
    }
    return isCopied;
}

bool cSpline::Load(cXml& node, void* data, cErrorPager* pager, void* extra) {
    const bool isLoaded = cClass::Load(node, data, pager, extra);
    if (data == static_cast<cClass*>(this)) { // else it has gone on to the object
        Segments.Clear();
    }
    return isLoaded;
}

// ---- The cache

void cSpline::EnsureCache() const {
    if (Segments.IsEmpty() && !Nodes.IsEmpty()) {
        FillCache();
    }
}

void cSpline::AddSegment(const cSpline_Node& from, const cSpline_Node& to) const {
    const int last = Segments.Count() - 1;
    Segment s;
    s.Bezier = {{from.EP, from.CV1, to.CV0, to.EP}};
    const cSphere sphere = cSphere::FromPoints(s.Bezier.Points, 4);
    s.Center = sphere.center;
    s.Radius = sphere.radius;
    s.EndTime = 0;
    float lengths[s_Steps + 1];
    MeasureSteps(s.Bezier, lengths);
    float length = 0;
    for (const float step : lengths) {
        length += step;
    }
    s.EndLength = (last >= 0 ? Segments[last].EndLength : 0) + length;
    const cBounds box = cBounds::FromPoints(s.Bezier.Points, 4);
    m_Bounds = cBounds(cVec3::Min(m_Bounds.min, box.min), cVec3::Max(m_Bounds.max, box.max));
    Segments.Add(s);
}

void cSpline::FillCache() const {
    Segments.Clear();
    m_Bounds = cBounds::Empty;
    const cSpline_Node* first = nullptr;
    const cSpline_Node* former = nullptr;
    for (int i = 0; i < Nodes.Count(); i++) {
        const cSpline_Node* node = Nodes.Get(i);
        if (!node) {
            continue;
        }
        if (former) {
            AddSegment(*former, *node);
        } else {
            first = node;
        }
        former = node;
    }
    if (Closed && former) {
        AddSegment(*former, *first);
    }
    const int count = Segments.Count();
    if (count == 0) {
        return;
    }
    const float total = Segments[count - 1].EndLength;
    for (int i = 0; i < count; i++) {
        Segments[i].EndTime = total > 0 ? Segments[i].EndLength / total : float(i + 1) / float(count);
    }
    Segments[count - 1].EndTime = 1;
}

template <float cSpline::Segment::*End> void cSpline::GetRange(int i, float* from, float* to) const {
    EnsureCache();
    const bool isThere = i >= 0 && i < Segments.Count();
    *from = isThere && i > 0 ? Segments[i - 1].*End : 0.0f;
    *to = isThere ? Segments[i].*End : 0.0f;
}

void cSpline::GetSegmentTimeRange(int i, float* from, float* to) const {
    GetRange<&Segment::EndTime>(i, from, to);
}

void cSpline::GetSegmentLengthRange(int i, float* from, float* to) const {
    GetRange<&Segment::EndLength>(i, from, to);
}

float cSpline::GetTotalLength() const {
    EnsureCache();
    return Segments.IsEmpty() ? 0 : Segments[Segments.Count() - 1].EndLength;
}

const cBounds& cSpline::GetBounds() const {
    EnsureCache();
    if (Segments.IsEmpty()) {
        m_Bounds = cBounds::Empty; // of a cache that has been emptied since
    }
    return m_Bounds;
}

// ---- Places

/// The first segment that does not end ahead of the value. Ends never go down from segment to segment.
template <float cSpline::Segment::*End> cSpline::Place cSpline::GetPlaceBy(float value) const {
    EnsureCache();
    const int count = Segments.Count();
    if (count == 0) {
        return {};
    }
    value = value > 0 ? std::min(value, Segments[count - 1].*End) : 0;
    const Segment* found = std::partition_point(std::as_const(Segments).begin(), std::as_const(Segments).end(),
                                                [value](const Segment& s) { return s.*End < value; });
    Place place;
    place.Segment = std::min(int(found - Segments.Data()), count - 1);
    float from, to;
    GetRange<End>(place.Segment, &from, &to);
    place.t = Saturate((value - from) / (to - from));
    return place;
}

cSpline::Place cSpline::GetPlaceByTime(float time) const {
    return GetPlaceBy<&Segment::EndTime>(time);
}

cSpline::Place cSpline::GetPlaceByLength(float length) const {
    return GetPlaceBy<&Segment::EndLength>(length);
}

cSpline::Place cSpline::GetPlaceByLengthAccurate(float length) const {
    Place place = GetPlaceByLength(length);
    const Segment* segment = Find(place);
    if (!segment) {
        return place;
    }
    float from, to;
    GetSegmentLengthRange(place.Segment, &from, &to);
    const float rest = length - from;
    if (!(rest > 0)) {
        place.t = 0;
        return place;
    }
    float lengths[s_Steps + 1];
    MeasureSteps(segment->Bezier, lengths);
    float sum = 0;
    for (int i = 0; i <= s_Steps; i++) {
        const float before = sum;
        sum += lengths[i];
        if (sum >= rest) {
            const float share = Saturate((rest - before) / lengths[i]);
            place.t = Saturate(s_At.T[i] + (s_At.T[i + 1] - s_At.T[i]) * share);
            return place;
        }
    }
    place.t = 1;
    return place;
}

const cSpline::Segment* cSpline::Find(const Place& place) const {
    EnsureCache();
    return place.Segment >= 0 && place.Segment < Segments.Count() ? &Segments[place.Segment] : nullptr;
}

cVec3 cSpline::GetValue(const Place& place) const {
    const Segment* segment = Find(place);
    return segment ? segment->Bezier.GetValue(place.t) : cVec3::Zero;
}

cVec3 cSpline::GetDerivativeLocal(const Place& place) const {
    const Segment* segment = Find(place);
    return segment ? segment->Bezier.GetDerivative(place.t) : cVec3::Zero;
}

cVec3 cSpline::GetDerivativeGlobal(const Place& place) const {
    float from, to;
    GetSegmentTimeRange(place.Segment, &from, &to);
    return to != from ? GetDerivativeLocal(place) / (to - from) : cVec3::Zero;
}

float cSpline::GetTimeFromPlace(const Place& place) const {
    float from, to;
    GetSegmentTimeRange(place.Segment, &from, &to);
    return from + (to - from) * place.t;
}

float cSpline::GetLengthFromPlace(const Place& place) const {
    float from, to;
    GetSegmentLengthRange(place.Segment, &from, &to);
    // The start counts twice, unlike with the times. Callers ask near the first segment, where it is 0, and none of
    // them makes up for it; right lengths would come as a surprise to those that stored the others.
    return from + ((to - from) * place.t + from);
}

// ---- Closest points

cSpline::Place cSpline::CalcClosestPointPlaceLinear(const cVec3& point) const {
    EnsureCache();
    Place best;
    float bestSq = cMath::FloatMaxValue;
    for (int i = 0; i < Segments.Count(); i++) {
        const cSegBezier<cVec3>& curve = Segments[i].Bezier;
        cSeg chord;
        chord.SetFromEnds(curve.Points[0], curve.Points[3], 0.001f);
        const float t = chord.ProjectPoint(cSeg::Segment, point);
        const float distSq = cVec3::DistanceSq(point, chord.GetPoint(t));
        if (distSq < bestSq) {
            bestSq = distSq;
            best = {i, t};
        }
    }
    return best;
}

cSpline::Place cSpline::CalcClosestPointPlaceAccurate(const cVec3& point, float maxErrSq) const {
    EnsureCache();
    static thread_local cList<ClosestPointRef> s_Refs; // one for all calls, so that they do not allocate
    cList<ClosestPointRef>& refs = s_Refs;
    refs.SetCount(Segments.Count());
    for (int i = 0; i < Segments.Count(); i++) {
        const float outside = std::max(0.0f, cVec3::Distance(point, Segments[i].Center) - Segments[i].Radius); // NaN: 0
        refs[i] = {i, outside * outside};
    }
    refs.Sort(ClosestPointRef::Cmp);

    Place best;
    float bestSq = cMath::FloatMaxValue;
    for (int i = 0; i < refs.Count() && refs[i].MinDistSq < bestSq; i++) {
        float distSq;
        const float t = Segments[refs[i].Segment].Bezier.CalcClosestPointParameterAccurate(point, maxErrSq, &distSq);
        if (distSq < bestSq) {
            bestSq = distSq;
            best = {refs[i].Segment, t};
        }
    }
    return best;
}

} // namespace trellis
