#include "spatial/cBsp.h"

#include <cstring>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "../mesh/CodecFiles.h"
#include "Soups.h"
#include "foundation/cPool.h"
#include "math/cMat4.h"
#include "spatial/cBsp_Chooser.h"
#include "tests/render/Allocations.h"

namespace trellis {

namespace {

using Triangle = cBsp::Triangle;

constexpr struct Soup {
    const char* Name;
    int Count;
    float Spread, Least, Most; // of sizes; half of them are the least
    bool IsFlat;
} s_Soups[] = {
    {"one", 1, 1, 2, 2, false},       {"small", 30, 4, 1, 3, false},     {"large", 700, 12, 0.5f, 3, false},
    {"coplanar", 150, 5, 1, 2, true}, {"tiny", 300, 2, 0.02f, 1, false}, {"huge", 60, 10, 0.5f, 900, false},
    {"dense", 120, 2, 1, 4, false},
};

void Fill(const Soup& soup, cBsp* bsp) {
    Random random(unsigned(soup.Count));
    for (int i = 0; i < soup.Count; i++) {
        const float size = i % 2 ? soup.Most : soup.Least;
        const cVec3 at = random.Point(soup.Spread);
        cVec3 corners[3];
        for (cVec3& c : corners) {
            c = at + random.Point(size);
            c.y = soup.IsFlat ? float(i % 3) : c.y;
        }
        bsp->AddTriangle(corners[0], corners[1], corners[2], i);
    }
}

double Area(const Triangle& t) {
    const Exact a = t.Corners[0];
    return Length(Cross(Exact(t.Corners[1]) - a, Exact(t.Corners[2]) - a)) / 2;
}

/// Where a segment passes a triangle, as a share of it: -1 when it does not, nor by the margin.
double Crossing(const Triangle& t, const Exact& from, const Exact& to, double margin) {
    const Exact a = t.Corners[0], way = to - from, cross = Cross(Exact(t.Corners[1]) - a, Exact(t.Corners[2]) - a);
    if (t.Plane.normal == cVec3::Zero) {
        return -1;
    }
    const Exact n = cross * (1 / Length(cross));
    const double start = Dot(n, from - a), end = Dot(n, to - a), slope = std::fabs(end - start) / Length(way);
    if (start * end >= 0 || slope < margin || std::min(std::fabs(start), std::fabs(end)) < margin) {
        return -1;
    }
    const Exact p = from + way * (start / (start - end));
    for (int i = 0; i < 3; i++) {
        const Exact corner = t.Corners[i], edge = Exact(t.Corners[(i + 1) % 3]) - corner;
        if (Dot(Cross(n, edge), p - corner) < margin * Length(edge)) {
            return -1;
        }
    }
    return start / (start - end);
}

std::string Saved(const cBsp& bsp) {
    cFile file;
    bsp.Save(&file);
    return BytesOf(file);
}

TEST(Bsp, SegmentsMeetWhatBruteForceMeets) {
    for (const Soup& soup : s_Soups) {
        SCOPED_TRACE(soup.Name);
        cBsp bsp;
        Fill(soup, &bsp);
        bsp.Build(3, 1, 0.001f);
        cList<Triangle> all;
        bsp.GetAllTriangles(&all);
        Random random(5);
        int hits = 0;
        for (int i = 0; i < 2000; i++) {
            const float reach = std::max(soup.Spread * 1.5f, soup.Most / 4);
            const cVec3 from = random.Point(reach), to = random.Point(reach);
            double nearest = 2;
            for (const Triangle& t : all) {
                const double share = Crossing(t, from, to, 0.01);
                nearest = share >= 0 ? std::min(nearest, share) : nearest;
            }
            cVec3 point;
            const Triangle* triangle = nullptr;
            const bool isHit = bsp.Intersects(from, to, &point, &triangle);
            EXPECT_EQ(bsp.Intersects(from, to, nullptr, nullptr), isHit);
            EXPECT_TRUE(isHit || nearest > 1) << i;
            if (isHit) {
                hits++;
                const double length = Length(Exact(to) - from), at = Length(Exact(point) - from);
                EXPECT_LT(at, nearest * length + 0.02) << i;
                EXPECT_LT(DistanceTo(triangle->Corners, point), 0.01) << i;
                EXPECT_NEAR(Length(Exact(to) - point), length - at, 0.001);
            }
        }
        EXPECT_GT(hits, soup.Count > 1 ? 100 : 20);
    }
}

TEST(Bsp, RadiusFindsWhatIsNear) {
    for (const Soup& soup : s_Soups) {
        SCOPED_TRACE(soup.Name);
        cBsp bsp;
        Fill(soup, &bsp);
        bsp.Build(3, 1, 0.001f);
        cList<Triangle> all, found;
        bsp.GetAllTriangles(&all);
        Random random(6);
        for (int i = 0; i < 200; i++) {
            const cVec3 center = random.Point(soup.Spread * 1.5f);
            const float radius = random.In(0.01f, soup.Spread);
            bsp.GetTrianglesWithinRadius(center, radius, &found);
            std::map<std::string, int> times;
            const auto key = [](const Triangle& t) { return std::string((const char*)t.Corners, sizeof(t.Corners)); };
            for (const Triangle& t : found) {
                EXPECT_LT(std::fabs(t.Plane.SignedDistance(center)), radius);
                times[key(t)]++;
            }
            for (const Triangle& t : all) {
                if (DistanceTo(t.Corners, center) < radius - 0.003) {
                    EXPECT_GT(times[key(t)], 0) << i;
                }
            }
        }
    }
}

TEST(Bsp, BuildKeepsAreaAndConsumesTheList) {
    for (const Soup& soup : s_Soups) {
        SCOPED_TRACE(soup.Name);
        cBsp bsp;
        Fill(soup, &bsp);
        std::vector<double> areas;
        for (const Triangle& t : bsp.Triangles) {
            areas.push_back(Area(t));
        }
        bsp.Build(3, 1, 0.001f);
        EXPECT_TRUE(bsp.Triangles.IsEmpty());
        cList<Triangle> all;
        bsp.GetAllTriangles(&all);
        for (const Triangle& t : all) {
            areas[size_t(t.Data)] -= Area(t);
        }
        for (const double left : areas) {
            EXPECT_NEAR(left, 0, 1e-3 * soup.Most * soup.Most);
        }
    }
}

constexpr struct {
    const char* Name;
    float X[3]; // of the corners, cut at 0
    int Fronts, Backs;
} s_Cuts[] = {
    {"one in front", {2, -1, -3}, 1, 2},
    {"two in front", {-1, 2, 3}, 2, 1},
    {"the middle one in front", {-1, 2, -3}, 1, 2},
    {"the last one behind", {1, 2, -3}, 2, 1},
    {"a corner on the plane", {0, 2, -2}, 1, 1},
    {"behind, on, in front", {-2, 0, 2}, 1, 1},
    {"in front, behind, on", {2, -2, 0}, 1, 1},
    {"a little in front counts as on", {2, 0.0009f, -2}, 1, 1},
    {"and hardly more than that", {0.0011f, 0.0009f, -2}, 1, 1},
    {"a little behind counts as on", {2, -0.0009f, -2}, 1, 1},
    {"hardly in front, on and far behind", {0.0011f, -2, -0.0009f}, 1, 1},
};

TEST(Bsp, SplitCoversTheTriangleInItsPlane) {
    for (const auto& c : s_Cuts) {
        SCOPED_TRACE(c.Name);
        Triangle source{{{c.X[0], 0, 1}, {c.X[1], 5, 0}, {c.X[2], 1, 4}}, 7, {}, {}};
        source.CalcPlanes();
        Triangle pieces[3];
        int fronts, backs;
        source.Split(pieces, fronts, backs, cPlane(cVec3::AxisX, 0.0f), 0.001f);
        EXPECT_EQ(fronts, c.Fronts);
        EXPECT_EQ(backs, c.Backs);
        double area = 0;
        for (int i = 0; i < fronts + backs; i++) {
            area += Area(pieces[i]);
            EXPECT_EQ(pieces[i].Data, 7);
            for (const cVec3& corner : pieces[i].Corners) {
                EXPECT_TRUE(i < fronts ? corner.x > -0.0011f : corner.x < 0.0011f) << corner.x;
                EXPECT_NEAR(DistanceTo(source.Corners, corner), 0, 1e-5);
            }
            if (Area(pieces[i]) > 0.01) {
                EXPECT_NEAR(cVec3::Dot(pieces[i].Plane.normal, source.Plane.normal), 1, 1e-5);
            }
        }
        EXPECT_NEAR(area, Area(source), 1e-4);
    }
}

/// A triangle without area divides nothing: all the rest is in front of it, and is to be found on both of its sides.
TEST(Bsp, TrianglesWithoutAreaHideNothing) {
    cBsp bsp;
    bsp.AddTriangle(cVec3::Zero, cVec3::AxisX, cVec3(2, 0, 0), 1);
    bsp.AddTriangle({-1, 0, -1}, {0, 0, 1}, {1, 0, -1}, 2);
    bsp.Build(3, 1, 0.001f);
    const Triangle* triangle = nullptr;
    EXPECT_TRUE(bsp.Intersects({0, 1, 0}, {0, -1, 0}, nullptr, &triangle));
    ASSERT_TRUE(triangle);
    EXPECT_EQ(triangle->Data, 2);
}

TEST(Bsp, SmallTreesByHand) {
    cBsp bsp;
    EXPECT_FALSE(bsp.Intersects({0, 1, 0}, {0, -1, 0}, nullptr, nullptr));
    bsp.Build(3, 1, 0.001f);
    EXPECT_TRUE(bsp.IsEmpty());
    bsp.AddTriangle({-1, 0, -1}, {0, 0, 1}, {1, 0, -1}, 4);
    bsp.AddTriangle({9, 0, -1}, {10, 0, 1}, {11, 0, -1}, 5); // in the same plane: in front
    bsp.Build(3, 1, 0.001f);
    EXPECT_EQ(Saved(bsp).size(), 82u);
    EXPECT_EQ(Saved(bsp)[40], 2);
    EXPECT_EQ(Saved(bsp)[81], 0);
    cVec3 point;
    const Triangle* triangle;
    for (const float side : {1.0f, -1.0f}) {
        ASSERT_TRUE(bsp.Intersects({10, side, 0}, {10, -3 * side, 0}, &point, &triangle));
        EXPECT_EQ(point, cVec3(10, 0, 0));
        EXPECT_EQ(triangle->Data, 5);
    }
    EXPECT_FALSE(bsp.Intersects({-5, 0, 0}, {5, 0, 0}, nullptr, nullptr)); // in the plane
    EXPECT_FALSE(bsp.Intersects({0, 2, 0}, {0, 0, 0}, nullptr, nullptr));  // up to it
    EXPECT_TRUE(bsp.Intersects({0, 0, 0}, {0, 2, 0}, nullptr, nullptr));   // from it, which is behind
    EXPECT_FALSE(bsp.Intersects({0, 0, 0}, {0, -2, 0}, nullptr, nullptr));
    bsp.Transform(cMat4::Translation(0, 3));
    EXPECT_FALSE(bsp.Intersects({0, 1, 0}, {0, -1, 0}, nullptr, nullptr));
    EXPECT_TRUE(bsp.Intersects({0, 4, 0}, {0, 2, 0}, nullptr, nullptr));
}

std::string Datas(const cList<Triangle>& triangles) {
    std::string out;
    for (const Triangle& t : triangles) {
        out += std::to_string(t.Data) + ' ';
    }
    return out;
}

constexpr cVec3 s_Upright[3] = {{0, 0, 0}, {0, 1, 0}, {0, 0, 1}};  // looks along x
constexpr cVec3 s_Across[3] = {{-1, 0, 0}, {-1, 0, 1}, {1, 0, 0}}; // and along y, through x = 0

TEST(Bsp, TakesTheEarliestOfTheLeastCost) {
    const auto addUpright = [](cBsp* bsp, float x, int data) {
        const cVec3 at(x, 0, 0);
        bsp->AddTriangle(s_Upright[0] + at, s_Upright[1] + at, s_Upright[2] + at, data);
    };
    cList<Triangle> all;
    cBsp bsp;
    for (int i = 0; i < 3; i++) { // the middle one and the last one leave 1 more on a side
        addUpright(&bsp, float(i), i);
    }
    bsp.Build(3, 1, 0.001f);
    bsp.GetAllTriangles(&all);
    EXPECT_EQ(Datas(all), "1 2 0 ");
    for (const bool isSplitDear : {true, false}) {
        addUpright(&bsp, 0, 10); // evens the sides, and cuts the third
        addUpright(&bsp, -1, 11);
        bsp.AddTriangle(s_Across[0], s_Across[1], s_Across[2], 12);
        isSplitDear ? bsp.Build(4, 1, 0.001f) : bsp.Build(1, 4, 0.001f); // in place of the former tree
        bsp.GetAllTriangles(&all);
        EXPECT_EQ(Datas(all), isSplitDear ? "11 12 10 " : "10 12 11 12 12 ");
    }
    constexpr cVec3 Pieces[3][3] = {{{0, 0, 0.5f}, {1, 0, 0}, {0, 0, 0}},
                                    {{0, 0, 0}, {-1, 0, 0}, {-1, 0, 1}},
                                    {{0, 0, 0}, {-1, 0, 1}, {0, 0, 0.5f}}};
    for (const auto& [piece, at] : {std::pair(0, 1), {1, 3}, {2, 4}}) {
        EXPECT_TRUE(std::equal(Pieces[piece], Pieces[piece] + 3, all[at].Corners)) << piece;
    }
    bsp.GetTrianglesWithinRadius({-0.9f, 0, 0}, 0.5f, &all);
    EXPECT_EQ(Datas(all), "11 12 12 ");
    bsp.GetTrianglesWithinRadius({0.9f, 0, 0}, 0.5f, &all); // what is behind is not looked at, though in its plane
    EXPECT_EQ(Datas(all), "12 ");
    bsp.AddTriangle(s_Across[0], s_Across[1], s_Across[2], 0);
    bsp.Free();
    EXPECT_TRUE(bsp.IsEmpty() && bsp.Triangles.IsEmpty());
}

TEST(Bsp, Planes) {
    Triangle t{{{0, 0, 3}, {2, 0, 3}, {0, 2, 3}}, 0, {}, {}};
    t.CalcPlanes();
    EXPECT_EQ(t.Plane, cPlane(cVec3::AxisZ, -3.0f));
    EXPECT_EQ(t.EdgePlanes[0], cPlane(cVec3(2, 0, 0), 0.0f));
    EXPECT_EQ(t.EdgePlanes[1], cPlane(cVec3(0, 2, 0), 0.0f));
    EXPECT_EQ(t.EdgePlanes[2], cPlane(cVec3(-2, -2, 0), 4.0f));
    EXPECT_TRUE(t.IsAbove({1, 1, 9}));
    EXPECT_FALSE(t.IsAbove({1, 1.01f, 9}));
    for (const float leg : {0.00099f, 0.00101f}) {
        t = {{{0, 0, 0}, {leg, 0, 0}, {0, 1, 0}}, 0, {}, {}};
        t.CalcPlanes();
        EXPECT_EQ(t.Plane.normal, leg > 0.001f ? cVec3::AxisZ : cVec3::Zero);
    }
}

/// One plane that is no number divides nothing, and a long way misses nothing by being rounded.
TEST(Bsp, BrokenPlanesAndLongWays) {
    cBsp bsp;
    bsp.AddTriangle({1e20f, 0, 0}, {0, 1e20f, 1}, {1, 0, 1e20f}, 1);
    bsp.AddTriangle({0, 0, 0}, {0, 0.1f, 0}, {0, 0, 0.1f}, 2);
    bsp.Build(3, 1, 0.001f);
    cList<Triangle> found;
    bsp.GetTrianglesWithinRadius({0.1f, 0, 0}, 1, &found);
    EXPECT_EQ(Datas(found), "2 ");
    Random random(4);
    int hits = 0;
    for (int i = 0; i < 5000; i++) {
        const cVec3 way(1e7f, random.In(-1e7f, 1e7f), random.In(-1e7f, 1e7f)), at(0, 0.03f, 0.03f);
        const cVec3 from = at - way * 0.37f, to = at + way * 0.63f;
        const Triangle& t = found[0];
        const float start = t.Plane.SignedDistance(from);
        if (t.IsAbove(from - (to - from) * (start / cVec3::Dot(t.Plane.normal, to - from)))) {
            EXPECT_TRUE(bsp.Intersects(from, to, nullptr, nullptr)) << i;
            hits++;
        }
    }
    EXPECT_GT(hits, 100);
}

TEST(Bsp, FourAtATimeScoreTheSame) {
    for (const Soup& soup : s_Soups) {
        cBsp bsp;
        Fill(soup, &bsp);
        constexpr float SplitCost = 0.1f, BalanceCost = 0.3f; // sums of these are rounded
        cBsp_Chooser chooser(SplitCost, BalanceCost, 0.001f);
        chooser.Take(bsp.Triangles);
        for (const Triangle& t : bsp.Triangles) {
            float cost = 0;
            int balance = 0;
            for (const Triangle& other : bsp.Triangles) {
                const auto [low, high] =
                    std::minmax({t.Plane.SignedDistance(other.Corners[0]), t.Plane.SignedDistance(other.Corners[1]),
                                 t.Plane.SignedDistance(other.Corners[2])});
                const bool isBack = low<-0.001f, isFront = high> 0.001f;
                cost += isBack && isFront ? SplitCost : 0;
                balance += !isBack ? 1 : !isFront ? -1 : 0;
            }
            const float score = chooser.ScorePlain(t.Plane, 1e30f);
            EXPECT_EQ(score, float(std::abs(balance)) * BalanceCost + cost);
            EXPECT_EQ(chooser.Score(t.Plane, 1e30f), score);
            EXPECT_EQ(chooser.Score(t.Plane, score + 1), score);
            EXPECT_GE(chooser.Score(t.Plane, score), score);
            EXPECT_GE(chooser.ScorePlain(t.Plane, score), score);
        }
    }
}

TEST(Bsp, FilesRoundTripAndPrefixesFail) {
    cBsp bsp, back;
    Fill(s_Soups[1], &bsp);
    bsp.Build(3, 1, 0.001f);
    const std::string bytes = Saved(bsp);
    ASSERT_TRUE(back.Load(FileOf(bytes)));
    EXPECT_EQ(Saved(back), bytes);
    cList<Triangle> a, b;
    bsp.GetAllTriangles(&a);
    back.GetAllTriangles(&b);
    ASSERT_EQ(a.Count(), b.Count());
    EXPECT_EQ(std::memcmp(a.Data(), b.Data(), sizeof(Triangle) * size_t(a.Count())), 0);
    for (size_t size = 0; size < bytes.size(); size++) {
        ASSERT_FALSE(back.Load(FileOf(std::string_view(bytes).substr(0, size)))) << size;
        back.Intersects({-9, -9, -9}, {9, 9, 9}, nullptr, nullptr); // of what was read
        back.GetAllTriangles(&b);
        ASSERT_EQ(b.Count(), int(size) / 41);
    }
}

/// Depth of a tree is up to a file: no query may keep it on the stack.
TEST(Bsp, LongChains) {
    for (const std::string& turns :
         {std::string("\1"), std::string("\2"), std::string("\1\2"), std::string("\3\0", 2)}) {
        constexpr int Count = 200001;
        std::string bytes(size_t(Count) * 41, '\0');
        for (int i = 0; i < Count; i++) {
            const float corners[9] = {0, 0, float(i), 0, 1, float(i), 1, 0, float(i)};
            std::memcpy(&bytes[size_t(i) * 41], corners, sizeof(corners));
            bytes[size_t(i) * 41 + 40] = i + 1 < Count ? turns[size_t(i) % turns.size()] : '\0';
        }
        cBsp bsp;
        ASSERT_TRUE(bsp.Load(FileOf(bytes)));
        EXPECT_TRUE(Saved(bsp) == bytes);
        cList<Triangle> out;
        bsp.GetAllTriangles(&out);
        EXPECT_EQ(out.Count(), Count);
        bsp.GetTrianglesWithinRadius(cVec3::Zero, 1e9f, &out);
        EXPECT_EQ(out.Count(), Count);
        bsp.Transform(cMat4::Translation(1, 0));
        EXPECT_FALSE(bsp.Intersects({5, 5, -1}, {5, 5, 1e6f}, nullptr, nullptr));
        EXPECT_TRUE(bsp.Intersects({1.2f, 0.2f, -1}, {1.2f, 0.2f, 1e6f}, nullptr, nullptr));
        EXPECT_TRUE(bsp.Intersects({1.2f, 0.2f, 1e6f}, {1.2f, 0.2f, -1}, nullptr, nullptr));
        const int allocations = AllocationCount(), used = cPool_Debug::UsedCount;
        bsp.Free();
        EXPECT_EQ(AllocationCount(), allocations) << "there may be no memory left";
        EXPECT_LE(cPool_Debug::UsedCount, used - Count);
    }
}

} // namespace

} // namespace trellis
