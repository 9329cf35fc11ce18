// Splines in the plane z = 0: the closest point, beside lib2geom, and the cache.
//
// The squared error that ours is given takes its distances to the resolution of its floats: at a few thousand from the
// origin, within 0.001 of the distances of lib2geom, which computes in double. The check measures that.
#include "Bench.h"

#include "animation/cSpline.h"

#include <2geom/bezier-curve.h>
#include <2geom/path.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using namespace trellis;

namespace {

constexpr int s_Nodes = 1000, s_Points = 256;
constexpr float s_MaxErrSq = 1e-6f;
constexpr double s_MaxExcess = 1e-3; // of a distance; curves are about 90 long

/// A walk over the plane with turns that differ from node to node.
const cSpline& Walk() {
    static const cSpline& spline = *[] {
        auto* s = new cSpline;
        std::mt19937 random(1);
        std::vector<cVec3> points;
        double angle = 0;
        cVec3 at(0, 0, 0);
        for (int i = 0; i < s_Nodes; i++) {
            points.push_back(at);
            angle += (double(random() % 2001) - 1000) * 0.0015;
            at += cVec3(float(std::cos(angle)), float(std::sin(angle)), 0) * 90;
        }
        s->SetFromPoints(points.data(), s_Nodes);
        s->FillCache();
        return s;
    }();
    return spline;
}

Geom::Point ToPeer(const cVec3& p) {
    return {double(p.x), double(p.y)};
}

const Geom::Path& PeerWalk() {
    static const Geom::Path& path = *[] {
        auto* result = new Geom::Path(ToPeer(Walk().Segments[0].Bezier.Points[0]));
        for (const cSpline::Segment& s : Walk().Segments) {
            const cVec3* p = s.Bezier.Points;
            result->appendNew<Geom::CubicBezier>(ToPeer(p[1]), ToPeer(p[2]), ToPeer(p[3]));
        }
        return result;
    }();
    return path;
}

/// Near the spline, as a mouse or a thing that follows it is.
const std::vector<cVec3>& Points() {
    static const auto& points = *[] {
        auto* list = new std::vector<cVec3>;
        std::mt19937 random(2);
        for (int i = 0; i < s_Points; i++) {
            const auto offset = [&] { return float(int(random() % 121) - 60); };
            const cVec3 on = Walk().GetValue({int(random() % (s_Nodes - 1)), 0.5f});
            const float x = offset();
            list->push_back(on + cVec3(x, offset(), 0));
        }
        return list;
    }();
    return points;
}

struct Ours {
    static double OnCurve(int i, const cVec3& p) {
        return double(Walk().Segments[i].Bezier.CalcClosestPointParameterAccurate(p, s_MaxErrSq, nullptr));
    }
    static double OnPath(const cVec3& p) {
        const cSpline::Place place = Walk().CalcClosestPointPlaceAccurate(p, s_MaxErrSq);
        return place.Segment + double(place.t);
    }
};

struct Lib2Geom {
    static double OnCurve(int i, const cVec3& p) { return PeerWalk()[size_t(i)].nearestTime(ToPeer(p)); }
    static double OnPath(const cVec3& p) { return PeerWalk().nearestTime(ToPeer(p)).asFlatTime(); }
};

double DistanceAt(double time, const cVec3& p) {
    return Geom::distance(PeerWalk().pointAt(time), ToPeer(p));
}

const cBenchCheck s_ClosestCheck("Closest point", [] {
    double worst[2] = {0, 0};
    for (int i = 0; i < s_Points; i++) {
        const cVec3& p = Points()[size_t(i)];
        const double both[][2] = {{i + Ours::OnCurve(i, p), i + Lib2Geom::OnCurve(i, p)},
                                  {Ours::OnPath(p), Lib2Geom::OnPath(p)}};
        for (const auto& times : both) {
            const double ours = DistanceAt(times[0], p), peer = DistanceAt(times[1], p);
            worst[0] = std::max(worst[0], ours - peer);
            worst[1] = std::max(worst[1], peer - ours);
        }
    }
    return worst[0] <= s_MaxExcess && worst[1] <= s_MaxExcess;
});

template <class Side> void BM_ClosestOnCurve(benchmark::State& state) {
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Side::OnCurve(i, Points()[size_t(i)]));
        i = (i + 1) % s_Points;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_TEMPLATE(BM_ClosestOnCurve, Ours);
BENCHMARK_TEMPLATE(BM_ClosestOnCurve, Lib2Geom);

template <class Side> void BM_ClosestOnThousandNodes(benchmark::State& state) {
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Side::OnPath(Points()[size_t(i)]));
        i = (i + 1) % s_Points;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_TEMPLATE(BM_ClosestOnThousandNodes, Ours);
BENCHMARK_TEMPLATE(BM_ClosestOnThousandNodes, Lib2Geom);

struct CacheOurs {
    static float Length() {
        Walk().FillCache();
        return Walk().GetTotalLength();
    }
};

struct CachePlain { // the lengths alone, by the loop that one would write
    static float Length() {
        float total = 0;
        for (const cSpline::Segment& s : Walk().Segments) {
            cVec3 former = s.Bezier.Points[0];
            float t = 0, length = 0;
            for (int i = 0; i < 100; i++) {
                t += 0.01f;
                const cVec3 p = s.Bezier.GetValue(t);
                length += cVec3::Distance(former, p);
                former = p;
            }
            total += length + cVec3::Distance(former, s.Bezier.Points[3]);
        }
        return total;
    }
};

const cBenchCheck s_CacheCheck("FillCache", [] { return CacheOurs::Length() == CachePlain::Length(); });

template <class Side> void BM_FillCache(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(Side::Length());
    }
    state.SetItemsProcessed(state.iterations() * (s_Nodes - 1));
}
BENCHMARK_TEMPLATE(BM_FillCache, CacheOurs)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_FillCache, CachePlain)->Unit(benchmark::kMicrosecond);

} // namespace
