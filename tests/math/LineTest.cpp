#include "math/cLine.h"

#include <gtest/gtest.h>

#include <cmath>

namespace trellis {
namespace {

using V3 = cVec<float, 3>;

cLine<float, 3> Corner() {
    cLine<float, 3> line({0, 0, 0}, {1, 0, 0});
    line.points.Add({1, 1, 0});
    return line;
}

TEST(Line, PointsByFraction) {
    const cLine<float, 3> two({0, 0, 0}, {2, 4, 6});
    EXPECT_EQ(two.Point(0.5f), V3(1, 2, 3));
    EXPECT_EQ(two.Point(2), V3(4, 8, 12)) << "two points extrapolate";
    EXPECT_EQ(two.Point(-1), V3(-2, -4, -6));
    EXPECT_EQ(Corner().Length(), 2);
    EXPECT_EQ(Corner().Length(1), 1);
    EXPECT_EQ(Corner().Distances({1, 0, 0})[2], 1);
    EXPECT_EQ(Corner().Point(0.75f), V3(1, 0.5f, 0));
    EXPECT_EQ(Corner().Point(1), V3(1, 1, 0));
    EXPECT_EQ(Corner().Point(1.5f), V3::ZERO) << "past the end of three points";
    EXPECT_EQ((cLine<float, 2>().Point(0)), (cVec<float, 2>::ZERO));
    cLine<float, 3> still({1, 1, 1}, {1, 1, 1});
    still.points.Add({1, 1, 1});
    EXPECT_TRUE(std::isnan(still.Point(0.5f)[0])) << "no length, no number";
}

TEST(Line, NearestProjection) {
    constexpr struct {
        const char* Name;
        V3 P, Nearest;
        float Fraction, Parameter;
        int Segment;
    } cases[] = {
        {"in the first segment", {0.25f, -1, 0}, {0.25f, 0, 0}, 0.125f, 0.25f, 0},
        {"in the second", {3, 0.5f, 0}, {1, 0.5f, 0}, 0.75f, 0.5f, 1},
        {"before the start", {-2, -1, 0}, {0, 0, 0}, 0, 0, 0},
        {"past the end", {1, 9, 0}, {1, 1, 0}, 1, 1, 1},
        {"the corner belongs to the first of equals", {2, -1, 0}, {1, 0, 0}, 0.5f, 1, 0},
        {"snaps to the start, the parameter stays", {0.0005f, 0, 0}, {0, 0, 0}, 0.00025f, 0.0005f, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        float fraction = -1, parameter = -1;
        int segment = -9;
        EXPECT_EQ(Corner().NearestProjection(c.P, &fraction, &parameter, &segment), c.Nearest);
        EXPECT_FLOAT_EQ(fraction, c.Fraction);
        EXPECT_FLOAT_EQ(parameter, c.Parameter);
        EXPECT_EQ(segment, c.Segment);
        EXPECT_EQ(Corner().NearestProjection(c.P), c.Nearest);
    }
    int segment = 0;
    EXPECT_EQ((cLine<int, 2>().NearestProjection({1, 1}, nullptr, nullptr, &segment)), (cVec<int, 2>::UNDEFINED));
    EXPECT_EQ(segment, -1);
    const cLine<float, 3> tiny({0, 0, 0}, {0.03f, 0, 0}); // 0.0009 is below 0.001
    float parameter = 0;
    EXPECT_EQ(tiny.NearestProjection({9, 0, 0}, nullptr, &parameter, nullptr), V3(0.015f, 0, 0))
        << "counts by its middle";
    EXPECT_EQ(parameter, 0.5f);
}

TEST(Line, LoopsHaveCentreAndNormal) {
    cLine<float, 3> square({0, 0, 0}, {2, 0, 0});
    square.points.Add({2, 2, 0});
    square.points.Add({0, 2, 0});
    EXPECT_EQ(square.Center(), V3(1, 1, 0));
    // A = (-1,-1) + (1,-1), B = (-1,1) + (1,1): A x B = (0,-2,0) x (0,2,0) is zero.
    EXPECT_EQ(square.Normal(), V3::ZERO);
    // Three points: A = p0 - c = (-2/3,-1/3), B = p2 - c + p1 as it stands = (4/3, 2/3).
    EXPECT_NEAR(Corner().Normal()[2], 0, 1e-6);
    cLine<float, 3> moved = Corner();
    for (V3& p : moved.points) {
        p += V3(0, 5, 0);
    }
    EXPECT_EQ(moved.Normal(), V3(0, 0, -1)) << "the middle point is not seen from the centre";
}

TEST(Line, SortedAroundTheCentre) {
    cLine<float, 3> loop({4, 1, 0}, {1, 0, 0});
    for (const V3& p : {V3(3, 4, 0), V3(0, 3, 0), V3(5, 2.5f, 0)}) {
        loop.points.Add(p);
    }
    const V3 c = loop.Center(), n = loop.Normal();
    const cLine<float, 3>::CompareClockwise compare(c, n);
    const cLine<float, 3> sorted = loop.SortClockwise();
    ASSERT_EQ(sorted.points.Count(), 5);
    EXPECT_EQ(loop.points[0], V3(4, 1, 0)) << "the line itself stays";
    for (const V3& p : loop.points) {
        EXPECT_GE(sorted.points.IndexOf(p), 0);
    }
    const V3 a = c + V3(1, 0, 0), b = c + V3(0, 1, 0); // a x b is +z
    EXPECT_EQ(compare(a, b), n[2] > 0) << "false sends the first ahead";
    EXPECT_TRUE(compare(a, a));
}

TEST(Line, Subdivision) {
    cLine<float, 3> line({0, 0, 0}, {4, 0, 0});
    line.Subdivide(1);
    EXPECT_EQ(line.points.Count(), 2);
    line.Subdivide(2);
    ASSERT_EQ(line.points.Count(), 3);
    EXPECT_EQ(line.points[1], V3(2, 0, 0));
    line.Subdivide(4);
    ASSERT_EQ(line.points.Count(), 9);
    EXPECT_EQ(line.points[1], V3(0.5f, 0, 0));
    EXPECT_EQ(line.points[8], V3(4, 0, 0));
    cLine<float, 3> ten({0, 0, 0}, {1, 0, 0});
    cLine<float, 3> twelve = ten;
    ten.Subdivide(10); // ten steps of 0.1f add up to 1.0000001
    EXPECT_EQ(ten.points.Count(), 11);
    twelve.Subdivide(12); // twelve of 1/12 stay below 1: one point more
    EXPECT_EQ(twelve.points.Count(), 14);
    cLine<int, 3> ints({0, 0, 0}, {5, 0, 0});
    ints.Subdivide(2);
    EXPECT_EQ(ints.points[1], (cVec<int, 3>(2, 0, 0))) << "truncated";
}

TEST(Line, IntsBeyondTheirDifferences) {
    const int big = cMath::IntMaxValue;
    const cLine<int, 3> line({-big, 0, 0}, {big, 0, 0});
    EXPECT_FLOAT_EQ(line.Length(), 2.0f * 2147483647.0f);
    EXPECT_EQ((line.Point(0.5f)), (cVec<int, 3>(0, 0, 0)));
    EXPECT_EQ((cLine<int, 3>().Center()), (cVec<int, 3>(INT_MIN, INT_MIN, INT_MIN))) << "0 / 0 does not trap";
}

} // namespace
} // namespace trellis
