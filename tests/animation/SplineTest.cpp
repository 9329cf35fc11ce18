#include "animation/cSpline.h"

#include "math/cMat4.h"
#include "tests/math/Near.h"
#include "tests/render/Allocations.h"
#include "tests/render/RecordingDevice.h"
#include "ui/cMessageBox.h"
#include "ui/cWidgets.h"
#include "view/cManipulator.h"
#include "view/cViewer.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>

using namespace trellis;

namespace {

void AddNode(cSpline& spline, const cVec3& cv0, const cVec3& ep, const cVec3& cv1) {
    auto* node = new cSpline_Node;
    node->Set(cv0, ep, cv1);
    spline.Nodes.Add(node);
    spline.Segments.Clear();
}

/// Corners at 0, 10 and 40 on the X axis; the controls stand at the thirds.
void MakeStraight(cSpline& spline) {
    AddNode(spline, {0, 0, 0}, {0, 0, 0}, {10.0f / 3, 0, 0});
    AddNode(spline, {20.0f / 3, 0, 0}, {10, 0, 0}, {20, 0, 0});
    AddNode(spline, {30, 0, 0}, {40, 0, 0}, {40, 0, 0});
}

void MakeRandom(cSpline& spline, int count, unsigned seed, float size) {
    std::mt19937 random(seed);
    const auto number = [&] { return (float(random() >> 8) / float(1 << 24) - 0.5f) * size; };
    const auto point = [&] { // one after the other: arguments are evaluated in any order
        const float x = number(), y = number();
        return cVec3(x, y, number());
    };
    for (int i = 0; i < count; i++) {
        const cVec3 cv0 = point(), ep = point();
        AddNode(spline, cv0, ep, point());
    }
}

void ExpectPlace(const cSpline::Place& place, int segment, float t, float tolerance = 1e-5f) {
    EXPECT_EQ(place.Segment, segment);
    EXPECT_NEAR(place.t, t, tolerance);
}

std::string s_Asked;
bool s_Answer = true;
struct Asking { // somebody is there to answer
    Asking() {
        cMessageBox::SetHandler([](const char* title, const char* text) {
            s_Asked = std::string(title) + "|" + text;
            return s_Answer;
        });
    }
    ~Asking() { cMessageBox::SetHandler(nullptr); }
};

TEST(Spline, SegmentsJoinTheNodes) {
    static constexpr struct {
        int Nodes;
        bool Closed;
        int Segments;
    } s_Cases[] = {{0, false, 0}, {0, true, 0}, {1, false, 0}, {1, true, 1}, {2, false, 1}, {2, true, 2}};
    for (const auto& c : s_Cases) {
        SCOPED_TRACE(testing::Message() << c.Nodes << " nodes, closed " << c.Closed);
        cSpline spline;
        MakeRandom(spline, c.Nodes, 1, 10);
        spline.Closed = c.Closed;
        spline.Nodes.Add(new cTransform); // no node: passed over
        ExpectPlace(spline.GetPlaceByTime(1), std::max(c.Segments - 1, 0), c.Segments ? 1.0f : 0.0f, 0);
        EXPECT_EQ(spline.Segments.Count(), c.Segments);
        EXPECT_EQ(spline.GetTotalLength() > 0, c.Segments > 0);
        EXPECT_EQ(spline.GetBounds().IsEmpty(), c.Segments == 0);
        if (c.Segments == 0) {
            ExpectPlace(spline.CalcClosestPointPlaceAccurate(cVec3::One, 0.1f), 0, 0, 0);
            EXPECT_EQ(spline.GetValueByTime(0.5f), cVec3::Zero);
        } else if (c.Closed) { // the last one runs back to the first node
            const cVec3* back = spline.Segments[c.Segments - 1].Bezier.Points;
            EXPECT_TRUE(back[0] == spline.Nodes.Get(c.Nodes - 1)->EP && back[1] == spline.Nodes.Get(c.Nodes - 1)->CV1);
            EXPECT_TRUE(back[2] == spline.Nodes.Get(0)->CV0 && back[3] == spline.Nodes.Get(0)->EP);
        }
    }
}

TEST(Spline, TimeRunsEvenlyOverAllSegments) {
    cSpline spline;
    MakeStraight(spline);
    static constexpr struct {
        float Time;
        int Segment;
        float t;
    } s_Cases[] = {{-1, 0, 0}, {0, 0, 0}, {0.125f, 0, 0.5f}, {0.5f, 1, 1 / 3.f}, {1, 1, 1}, {2, 1, 1}};
    for (const auto& c : s_Cases) {
        SCOPED_TRACE(c.Time);
        ExpectPlace(spline.GetPlaceByTime(c.Time), c.Segment, c.t);
        ExpectPlace(spline.GetPlaceByLength(c.Time * 40), c.Segment, c.t);
        ExpectPlace(spline.GetPlaceByLengthAccurate(c.Time * 40), c.Segment, c.t);
        EXPECT_NEAR(spline.GetTimeFromPlace({c.Segment, c.t}), std::clamp(c.Time, 0.0f, 1.0f), 1e-6f);
        ExpectNear(spline.GetDerivativeGlobal(c.Time), {40, 0, 0}, 1e-3f);
        ExpectNear(spline.GetDerivativeLocal(c.Time), {c.Segment ? 30.0f : 10.0f, 0, 0}, 1e-3f);
    }
}

TEST(Spline, LengthFromPlaceCountsTheStartTwice) {
    cSpline spline;
    MakeStraight(spline);
    EXPECT_NEAR(spline.GetLengthFromPlace({0, 0.5f}), 5, 1e-4f);
    EXPECT_EQ(spline.GetLengthFromPlace({1, 0}), 2 * spline.Segments[0].EndLength);
    EXPECT_NEAR(spline.GetLengthFromPlace({1, 1}), 50, 1e-3f);
}

TEST(Spline, LengthsAreSumsOfAHundredStepsAndTheRest) {
    cSpline spline;
    MakeRandom(spline, 40, 2, 300);
    spline.EnsureCache();
    float total = 0;
    for (int i = 0; i < 39; i++) {
        float length = 0, t = 0;
        cVec3 former = spline.GetValue({i, 0});
        for (int k = 0; k < 100; k++) {
            t += 0.01f;
            const cVec3 p = spline.GetValue({i, t});
            length += cVec3::Distance(former, p);
            former = p;
            if (k % 33 == 0) {
                ExpectPlace(spline.GetPlaceByLengthAccurate(total + length), i, t, 1e-3f);
            }
        }
        ASSERT_LT(t, 1);
        total += length + cVec3::Distance(former, spline.Segments[i].Bezier.Points[3]);
        ASSERT_EQ(spline.Segments[i].EndLength, total) << i; // to the last bit
    }
}

TEST(Spline, DerivativesAreSlopes) {
    cSpline spline;
    MakeRandom(spline, 3, 3, 10);
    for (const float t : {0.1f, 0.4f, 0.9f}) {
        const cVec3 slope = (spline.GetValue({1, t + 0.01f}) - spline.GetValue({1, t - 0.01f})) / 0.02f;
        ExpectNear(spline.GetDerivativeLocal({1, t}), slope, 0.02f);
        ExpectNear(spline.GetDerivativeGlobal({1, t}), slope / (1 - spline.Segments[0].EndTime), 0.1f);
    }
}

TEST(Spline, ClosestPointMatchesATightScan) {
    cSpline spline, queries; // of which the nodes are asked for
    MakeRandom(spline, 12, 4, 100);
    MakeRandom(queries, 60, 5, 150);
    for (int i = 0; i < queries.Nodes.Count(); i++) {
        const cVec3 p = queries.Nodes.Get(i)->EP;
        float best = cMath::FloatMaxValue;
        for (int k = 0; k < 11 * 2000; k++) {
            best = std::min(best, cVec3::Distance(p, spline.GetValue({k / 2000, float(k % 2000) / 1999})));
        }
        const cVec3 found = spline.GetValue(spline.CalcClosestPointPlaceAccurate(p, 0.0001f));
        EXPECT_NEAR(cVec3::Distance(p, found), best, 0.02f) << i;
    }
    cSpline arches; // the linear form does not see the controls
    AddNode(arches, {0, 0, 0}, {0, 0, 0}, {0, 90, 0});
    AddNode(arches, {10, 90, 0}, {10, 0, 0}, {10, 0, 90});
    AddNode(arches, {20, 0, 90}, {20, 0, 0}, {0, 0, 0});
    ExpectPlace(arches.CalcClosestPointPlaceLinear({2.5f, 60, 0}), 0, 0.25f);
    ExpectPlace(arches.CalcClosestPointPlaceLinear({10, 5, 0}), 0, 1); // both segments: the earlier
    ExpectPlace(arches.CalcClosestPointPlaceAccurate({5, 70, 0}, 0.001f), 0, 0.5f, 1e-3f);
}

TEST(Spline, SearchesEndWhateverTheNumbers) {
    const Asking asking;
    constexpr float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (const float size : {0.0f, 1e-30f, 1e12f, 1e30f, inf, nan}) {
        SCOPED_TRACE(size);
        cSpline spline;
        AddNode(spline, {0, 0, 0}, {0, 0, 0}, {size, size, 0});
        AddNode(spline, {-size, 1, size}, {1, 1, size}, {0, 0, 0});
        for (const float number : {0.0f, -1.0f, 1.0f, nan}) {
            for (const auto& place : {spline.CalcClosestPointPlaceAccurate({0.3f, 0.2f, 0.1f}, number),
                                      spline.GetPlaceByTime(number), spline.GetPlaceByLengthAccurate(number)}) {
                EXPECT_TRUE(place.Segment == 0 && place.t >= 0 && place.t <= 1);
            }
        }
        if (!(std::fabs(size) > 1) || size == inf) { // what is just large asks for very many nodes
            spline.SetAdaptiveSampled();
            EXPECT_EQ(spline.Nodes.Count(), 2);
        }
    }
    cList<cSpline::Segment> list; // there is no float between the ends
    const cVec3 low(1e12f, 0, 0), high(std::nextafter(1e12f, inf), 0, 0);
    cSpline::SetAdaptiveSampled_RecursiveAdd(&list, {{low, low, high, high}}, 0, 1, 0.001f);
    EXPECT_EQ(list[list.Count() - 1].EndTime, 1);
    EXPECT_EQ(list[0].Radius, -1);
}

TEST(Spline, PointsGetTangentsAlongTheirNeighbours) {
    const cVec3 points[] = {{0, 0, 0}, {12, 0, 0}, {12, 12, 0}, {0, 0, 0}};
    cSpline spline;
    spline.SetFromPoints(points, 4);
    ExpectNear(spline.Nodes.Get(0)->CV1, {2, 0, 0}); // half the way to the next, and a third of that
    ExpectNear(spline.Nodes.Get(1)->CV0, {10, -2, 0});
    ExpectNear(spline.Nodes.Get(3)->CV0, {2, 2, 0});
    spline.Closed = true;
    spline.SetFromPoints(points, 4);
    ASSERT_EQ(spline.Nodes.Count(), 4);
    ExpectNear(spline.Nodes.Get(0)->CV1, {0, -2, 0}); // from (12, 12) to (12, 0), over the seam
    ExpectNear(spline.Nodes.Get(3)->CV1, {0, -2, 0});
    spline.SetFromPoints(points, 1);
    EXPECT_EQ(spline.Nodes.Get(0)->CV1, cVec3::Zero);
}

TEST(Spline, UniformSamplingAsksAndSpacesEvenly) {
    const Asking asking;
    for (const bool closed : {false, true}) {
        cSpline spline;
        MakeStraight(spline);
        spline.Closed = closed;
        spline.SetUniformSampledNodeCount = 2; // too few
        s_Answer = false;
        spline.SetUniformSampled();
        EXPECT_EQ(s_Asked,
                  "Confirm Set Uniform Sampled|Are you sure you want to set uniform sampled spline with 3 nodes ?");
        EXPECT_EQ(spline.Nodes.Get(1)->EP.x, 10);
        const float step = spline.GetTotalLength() / (closed ? 3 : 2);
        s_Answer = true;
        spline.SetUniformSampled();
        ASSERT_EQ(spline.Nodes.Count(), 3);
        ExpectNear(spline.Nodes.Get(1)->EP, {step, 0, 0}, 1e-3f);
        ExpectNear(spline.Nodes.Get(1)->CV1, {step * 4 / 3, 0, 0}, closed ? 0.2f : 1e-3f);
    }
}

TEST(Spline, AdaptiveSamplingSplitsWhatIsNotFlat) {
    const Asking asking;
    cSpline spline;
    MakeStraight(spline);
    spline.SetAdaptiveSampledMaxErrSq = 0; // too little
    spline.SetAdaptiveSampled();
    EXPECT_EQ(s_Asked, "Confirm Set Adaptive Sampled|"
                       "Are you sure you want to set adaptive sampled spline with error 0.00 ?");
    EXPECT_EQ(spline.Nodes.Count(), 3); // straight with controls at the thirds: never split

    AddNode(spline, {40, 50, 0}, {80, 50, 0}, {90, -10, 30});
    spline.Closed = true;
    spline.SetAdaptiveSampledMaxErrSq = 1;
    const float length = spline.GetTotalLength();
    const cVec3 at = spline.GetValue(spline.GetPlaceByLengthAccurate(length * 0.7f));
    spline.SetAdaptiveSampled();
    const int count = spline.Nodes.Count();
    EXPECT_GT(count, 6);
    EXPECT_FALSE(spline.Closed);
    const cSpline_Node *first = spline.Nodes.Get(0), *last = spline.Nodes.Get(count - 1);
    EXPECT_EQ(first->EP, last->EP);
    ExpectNear(first->CV0, first->EP * 2 - first->CV1);
    ExpectNear(last->CV1, last->EP * 2 - last->CV0);
    EXPECT_NEAR(spline.GetTotalLength(), length, 0.1f); // the curve is the same
    ExpectNear(spline.GetValue(spline.GetPlaceByLengthAccurate(length * 0.7f)), at, 0.1f);
}

TEST(Spline, CenteringMovesThePivotAndNotTheCurve) {
    cSpline spline;
    MakeRandom(spline, 4, 6, 20);
    spline.Transform.Scale = {1, 2, 3};
    spline.Transform.Rotate = {10, 20, 30};
    spline.Transform.Translate = {5, 6, 7};
    cVec3 at[2];
    for (cVec3& p : at) {
        p = spline.GetValue({2, 0.8f});
        cVec3::TransformCoordinate(&p, 1, spline.Transform.GetMatrix());
        spline.CenterTransform();
    }
    ExpectNear(at[0], at[1]);
    ExpectNear(spline.GetBounds().Center(), cVec3::Zero);
    EXPECT_EQ(spline.Transform.Scale, cVec3::One);
}

TEST(Spline, ToolsComeAndGoAndDragTheControls) {
    RecordingDevice& device = RecordingDevice::Install();
    cViewer viewer;
    viewer.Viewport = {0, 0, 100, 100};
    viewer.Update(false);
    cRender::SetViewer(&viewer);
    g_ManipulatorsType = cManipulator::None;
    auto spline = std::make_unique<cSpline>();
    MakeStraight(*spline);
    cSpline_Node* node = spline->Nodes.Get(1);
    const auto count = [] { return cWidgets::GetLayerOrder(0).Count() * 100 + cWidgets::GetLayerOrder(1).Count(); };
    spline->Edit();
    EXPECT_EQ(g_ManipulatorsType, cManipulator::MoveType);
    EXPECT_EQ(count(), 100 + 1 + 9); // one for the transform, three for each node
    spline->CreateTools();
    EXPECT_EQ(count(), 110);
    AddNode(*spline, {50, 0, 0}, {60, 0, 0}, {70, 0, 0});
    spline->Transform.Translate = {0, 0, -3};
    device.TakeDraws();
    cWidgets::Render(0);
    EXPECT_EQ(count(), 113);
    const auto* tool = dynamic_cast<cManipulator*>(cWidgets::GetWidget(node->GetToolID(cSpline_Node::End)));
    ASSERT_TRUE(tool && tool->Pos == &node->EP);
    EXPECT_EQ(tool->ParentInverse.m[14], 3);
    bool hasCurve = false;
    for (const RecordingDevice::Draw& draw : device.TakeDraws()) {
        hasCurve |= draw.Topology == cTopology::LineStrip && draw.Shader == "Colored" && draw.VertexCount == 301;
    }
    EXPECT_TRUE(hasCurve);

    node->EP.y += 5; // both controls come along
    cWidgets::Render(0);
    ExpectNear(node->CV0, {20.0f / 3, 5, 0});
    ExpectNear(node->CV1, {20, 5, 0});
    EXPECT_NEAR(spline->GetBounds().max[1], 5, 1e-4f); // and the cache follows
    node->CV0 = {10, -2, 0};
    cWidgets::Render(0);
    ExpectNear(node->CV1, {10, 15, 0}); // opposite, at its own 10
    node->CV1 = {10, 5, 4};
    cWidgets::SetCapture(node->GetToolID(cSpline_Node::End));
    cWidgets::Render(0);
    ExpectNear(node->CV0, {10, -2, 0}); // not while the end point is held
    cWidgets::ReleaseCapture();

    cWidgets::FreeLayer(0); // the manager frees what stands for the spline, never the spline
    EXPECT_EQ(spline->GetWidgetID(), -1);
    spline->Edit();
    EXPECT_NE(spline->GetWidgetID(), -1);
    spline->Edit();
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(node->GetToolID(cSpline_Node::ControlIn), -1);
    spline->Edit();
    spline.reset();
    EXPECT_EQ(count(), 0);
    cRender::SetViewer(nullptr);
    RecordingDevice::Uninstall();
    g_ManipulatorsType = cManipulator::None;
}

TEST(Spline, CacheAndQueriesAllocateNothing) {
    cSpline spline;
    MakeRandom(spline, 50, 7, 100);
    int allocations = 0;
    for (int run = 0; run < 2; run++) {
        allocations = AllocationCount();
        spline.FillCache();
        for (int i = 0; i < 20; i++) {
            const float share = float(i) / 20;
            const cVec3 p = spline.GetValue(spline.GetPlaceByLengthAccurate(share * spline.GetTotalLength()));
            spline.CalcClosestPointPlaceAccurate(p + cVec3::One, 0.001f);
            spline.CalcClosestPointPlaceLinear(p);
        }
        allocations = AllocationCount() - allocations;
    }
    EXPECT_EQ(allocations, 0);
}

TEST(Spline, OneWildSegmentHidesNoOther) {
    cSpline spline;
    MakeStraight(spline);
    const cVec3 onIt = spline.GetValueByTime(0.9f);
    spline.Nodes.Get(0)->CV1 = {1e30f, 0, 0};
    spline.Segments.Clear();
    const cSpline::Place place = spline.CalcClosestPointPlaceAccurate(onIt, 1e-6f);
    EXPECT_LT(cVec3::Distance(spline.GetValue(place), onIt), 0.01f);
    spline.SetUniformSampledNodeCount = INT_MAX;
    cMessageBox::SetHandler([](const char*, const char*) { return true; });
    const int nodes = spline.Nodes.Count();
    spline.SetUniformSampled();
    EXPECT_EQ(spline.Nodes.Count(), nodes) << "more than there is memory for";
    cMessageBox::SetHandler(nullptr);
}

TEST(Spline, LoadingEmptiesTheCache) {
    cSpline spline, other, copied;
    MakeStraight(copied);
    EXPECT_GT(copied.GetTotalLength(), 0);
    MakeRandom(other, 2, 8, 10);
    other.FullCopy(static_cast<cClass*>(&other), nullptr, &copied, static_cast<cClass*>(&copied), nullptr, nullptr);
    EXPECT_FLOAT_EQ(copied.GetTotalLength(), other.GetTotalLength());
    MakeStraight(spline);
    cStr text;
    ASSERT_TRUE(other.WriteToString(&text));
    EXPECT_NEAR(spline.GetTotalLength(), 40, 1e-3f);
    ASSERT_TRUE(spline.ReadFromString(text));
    EXPECT_NEAR(spline.GetTotalLength(), other.GetTotalLength(), 0.1f);
}

} // namespace
