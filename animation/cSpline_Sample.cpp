// New nodes for a spline: through points, evenly spaced, as many as an error asks for, about the middle.
#include "animation/cSpline.h"
#include "math/cMat4.h"
#include "ui/cMessageBox.h"

#include <algorithm>

namespace trellis {

namespace {

constexpr float s_Third = 0.33333334f;

cVec3 Transformed(const cVec3& p, const cMat4& m) {
    const cVec4 q = cVec4(p.x, p.y, p.z, 1) * m;
    return q.w == 1 ? cVec3(q.x, q.y, q.z) : cVec3(q.x / q.w, q.y / q.w, q.z / q.w);
}

} // namespace

void cSpline::RemoveNodes() {
    Nodes.RemoveAt(0, Nodes.Count());
    Segments.Clear();
}

void cSpline::AddNode(const cVec3& cv0, const cVec3& ep, const cVec3& cv1) {
    auto* node = new cSpline_Node;
    node->Set(cv0, ep, cv1);
    Nodes.Add(node);
}

int cSpline::CountNodes() const {
    int count = 0;
    for (int i = 0; i < Nodes.Count(); i++) {
        count += Nodes.Get(i) != nullptr;
    }
    return count;
}

void cSpline::SetFromPoints(const cVec3* points, int count) {
    RemoveNodes();
    const bool isRing = Closed && count > 1;
    for (int i = 0; i < count; i++) {
        const int before = i > 0 ? i - 1 : isRing ? count - 2 : i;
        const int behind = i < count - 1 ? i + 1 : isRing ? 1 : i;
        const cVec3 third = (points[behind] - points[before]) * 0.5f * s_Third;
        AddNode(points[i] - third, points[i], points[i] + third);
    }
}

void cSpline::SetUniformSampled() {
    struct Sample {
        cVec3 Value, Third;
    };
    constexpr int MostNodes = 1'000'000; // a number in a file must not take all memory
    const int count = std::max(SetUniformSampledNodeCount, 3);
    if (!cMessageBox::YesNo(
            "Confirm Set Uniform Sampled",
            cStr::Format("Are you sure you want to set uniform sampled spline with %d nodes ?", count).Text())) {
        return;
    }
    if (CountNodes() < 2 || count > MostNodes) {
        return;
    }
    Segments.Clear(); // the nodes may have been edited since
    const int pieces = Closed ? count : count - 1;
    const float step = GetTotalLength() / float(pieces), timeStep = 1.0f / float(pieces);
    cList<Sample> samples;
    samples.SetCount(count);
    for (int k = 0; k < count; k++) {
        const Place place = GetPlaceByLengthAccurate(float(k) * step);
        samples[k] = {GetValue(place), GetDerivativeGlobal(place) * timeStep * s_Third};
    }
    RemoveNodes();
    for (const Sample& s : samples) {
        AddNode(s.Value - s.Third, s.Value, s.Value + s.Third);
    }
}

void cSpline::SetAdaptiveSampled_RecursiveAdd(cList<Segment>* list, const cSegBezier<cVec3>& segment, float t0,
                                              float t1, float maxErrSq) {
    if (t1 - t0 < cSegBezier<cVec3>::MinPiece || segment.IsFlat(maxErrSq)) {
        list->Add({segment, t1, cVec3::Zero, -1, 0});
        return;
    }
    cSegBezier<cVec3> first, second;
    segment.Split(&first, &second);
    const float middle = (t0 + t1) * 0.5f;
    SetAdaptiveSampled_RecursiveAdd(list, first, t0, middle, maxErrSq);
    SetAdaptiveSampled_RecursiveAdd(list, second, middle, t1, maxErrSq);
}

void cSpline::SetAdaptiveSampled() {
    const float maxErrSq = std::max(0.001f, SetAdaptiveSampledMaxErrSq); // in this order, it is a number
    if (!cMessageBox::YesNo(
            "Confirm Set Adaptive Sampled",
            cStr::Format("Are you sure you want to set adaptive sampled spline with error %.2f ?", double(maxErrSq))
                .Text())) {
        return;
    }
    if (CountNodes() < 2) {
        return;
    }
    FillCache(); // the nodes may have been edited since
    cList<Segment> list;
    for (const Segment& segment : Segments) {
        SetAdaptiveSampled_RecursiveAdd(&list, segment.Bezier, 0, 1, maxErrSq);
    }
    RemoveNodes();
    const int count = list.Count();
    for (int k = 0; k <= count; k++) {
        const cVec3* in = k > 0 ? list[k - 1].Bezier.Points : nullptr;
        const cVec3* out = k < count ? list[k].Bezier.Points : nullptr;
        const cVec3 ep = in ? in[3] : out[0];
        AddNode(in ? in[2] : ep * 2 - out[1], ep, out ? out[1] : ep * 2 - in[2]);
    }
    // The last node stands on the first one already. Joining the two would add a loop: their outer controls point away
    // from each other.
    Closed = false;
}

void cSpline::CenterTransform() {
    FillCache();
    if (Segments.IsEmpty()) {
        return;
    }
    const cMat4 toWorld = Transform.GetMatrix();
    cVec3 middle = cVec3::Zero;
    for (const bool isPlaced : {false, true}) { // the middle is that of the box in the world
        for (int i = 0; i < Nodes.Count(); i++) {
            cSpline_Node* node = Nodes.Get(i);
            if (node && isPlaced) {
                node->Set(node->CV0 - middle, node->EP - middle, node->CV1 - middle);
            } else if (node) {
                node->Set(Transformed(node->CV0, toWorld), Transformed(node->EP, toWorld),
                          Transformed(node->CV1, toWorld));
            }
        }
        FillCache();
        middle = isPlaced ? middle : cVec3(m_Bounds.Center());
    }
    Segments.Clear();
    Transform.Scale = cVec3::One;
    Transform.Rotate = {};
    Transform.Translate = middle;
}

} // namespace trellis
