#include "math/cSolver.h"
#include "tests/math/Near.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace trellis {
namespace {

TEST(Solver, Quadratics) {
    constexpr struct {
        float A, B, C;
        int Code;
        float Roots[2];
    } cases[] = {{0, 0, 0, -3, {9, 9}}, {0, 0, 1, -2, {9, 9}}, {0, 2, -6, -1, {3, 9}}, {1, -4, 4, 1, {2, 9}},
                 {1, 2, 5, 0, {-1, 2}}, {1, -3, 2, 2, {2, 1}}, {2, 6, 4, 2, {-2, -1}}};
    for (const auto& c : cases) {
        float roots[2] = {9, 9}; // untouched
        EXPECT_EQ(cSolver::GetRoots2(c.A, c.B, c.C, roots), c.Code);
        EXPECT_EQ(roots[0], c.Roots[0]);
        EXPECT_EQ(roots[1], c.Roots[1]);
    }
    float roots[2];
    ASSERT_EQ(cSolver::GetRoots2(1, -10000, 1, roots), 2);
    EXPECT_NEAR(roots[1], 1.00000001e-4, 1e-10) << "no cancellation";
}

TEST(Solver, LowestPositiveRootLiesStrictlyInside) {
    constexpr struct {
        float A, B, C, Max;
        bool Found;
        float Root;
    } cases[] = {{1, -3, 2, 1.5f, true, 1}, {1, -3, 2, 1, false, 9}, {1, -3, 2, 1.001f, true, 1},
                 {1, -1, 0, 2, true, 1},    {1, -1, -2, 3, true, 2}, {1, -1, -2, 2, false, 9},
                 {1, -2, 1, 2, true, 1},    {1, 0, 1, 9, false, 9},  {0, 1, -1, 9, false, 9},
                 {-1, 3, -2, 9, true, 1}};
    for (const auto& c : cases) {
        float root = 9;
        EXPECT_EQ(cSolver::GetLowestPositiveRoot2(c.A, c.B, c.C, c.Max, &root), c.Found) << c.A << c.B << c.C;
        EXPECT_EQ(root, c.Root);
    }
}

TEST(Solver, CubicsWithThreeRealRoots) {
    Cases random;
    for (int i = 0; i < 300; i++) {
        float r[] = {random.In(-5, 5), random.In(-5, 5), random.In(-5, 5)};
        std::sort(r, r + 3);
        if (r[1] - r[0] < 0.1f || r[2] - r[1] < 0.1f) {
            continue;
        }
        float roots[3];
        ASSERT_EQ(cSolver::GetRoots3(-(r[0] + r[1] + r[2]), r[0] * r[1] + r[0] * r[2] + r[1] * r[2],
                                     -r[0] * r[1] * r[2], roots),
                  3);
        std::sort(roots, roots + 3);
        EXPECT_TRUE(NearFloats(roots, r, 3, 5e-3));
    }
}

TEST(Solver, OneRealRootIsRightOnlyWhereRIsNotNegative) {
    float roots[3] = {9, 9, 9};
    // (x + 2)(x^2 - 2x + 5): R is 17.04 > 0.
    ASSERT_EQ(cSolver::GetRoots3(0, 1, 10, roots), 1);
    EXPECT_NEAR(roots[0], -2, 1e-4);
    EXPECT_NEAR(roots[1], 1, 1e-4);
    EXPECT_NEAR(roots[2], 2, 1e-4);
    // (x - 2)(x^2 + 2x + 5): the mirror image, whose sign is dropped on purpose, gives the same numbers.
    ASSERT_EQ(cSolver::GetRoots3(0, 1, -10, roots), 1);
    EXPECT_NEAR(roots[0], -2, 1e-4);
}

TEST(Solver, EigenSystemOfSymmetricMatrices) {
    Cases random;
    int solved = 0;
    for (int i = 0; i < 200; i++) {
        const cMat3 turn = cMat3::Rotation(cVec3::Normalize(random.Vec()), random.In(0, 360));
        const float e[] = {random.In(-4, -1), random.In(0, 1), random.In(2, 5)};
        const cMat3 m = cMat3::Transpose(turn) * cMat3::Scaling(e[0], e[1], e[2]) * turn;
        float values[3];
        cVec3 vectors[3];
        ASSERT_TRUE(cSolver::EigenSolve(m, values, vectors));
        ASSERT_TRUE(cSolver::EigenSolve(m, nullptr, nullptr));
        float sorted[] = {values[0], values[1], values[2]};
        std::sort(sorted, sorted + 3);
        EXPECT_TRUE(NearFloats(sorted, e, 3, 1e-2));
        for (int k = 0; k < 3; k++) {
            if (vectors[k].z > 0.2f || vectors[k].z < -0.2f) { // its row of the adjugate is not a small one
                EXPECT_TRUE(Near(vectors[k] * m, vectors[k] * values[k], 5e-2));
                solved++;
            }
        }
    }
    EXPECT_GT(solved, 300);
    float values[3] = {9, 9, 9};
    EXPECT_FALSE(cSolver::EigenSolve(cMat3::RotationX(90), values, nullptr)) << "complex ones";
    EXPECT_EQ(values[0], 9);
    cVec3 vectors[3];
    EXPECT_TRUE(cSolver::EigenSolve(cMat3::Scaling(1, 2, 3), values, vectors));
    int zero = 0;
    for (const cVec3& v : vectors) {
        zero += v == cVec3::Zero;
    }
    EXPECT_EQ(zero, 2) << "vectors without z";
    float roots[3];
    EXPECT_EQ(cSolver::GetRoots3(-3, 3, -1, roots), 3) << "three times 1";
    EXPECT_TRUE(std::isnan(roots[0])) << "0 / 0, as it stands";
}

TEST(Solver, PlaneThroughPoints) {
    Cases random;
    for (int i = 0; i < 200; i++) {
        cVec3 u, v;
        const cVec3 n = cVec3::Normalize(random.Vec());
        n.ToPerps(u, v);
        const cVec3 origin = random.Vec();
        std::vector<cVec3> points;
        for (int k = 0; k < 40; k++) { // the two spreads are equal for every third: a round patch
            const float a = float(k) * 9 * cMath::RadsPerDeg;
            const float stretch = i % 3 == 0 ? 1 : 3;
            points.push_back(origin + u * (std::cos(a) * stretch) + v * std::sin(a) + n * (k % 2 ? 0.05f : -0.05f));
        }
        cVec3 center, normal;
        ASSERT_TRUE(cSolver::ApproximatePoints(points.data(), 40, &center, &normal, 0.001f));
        EXPECT_TRUE(Near(center, origin, 1e-4));
        EXPECT_NEAR(std::fabs(cVec3::Dot(normal, n)), 1, 1e-4) << i;
    }
}

TEST(Solver, PlaneThroughFlatOrFewPoints) {
    const cVec3 flat[] = {{1, 5, 0}, {4, 5, 2}, {2, 5, 9}};
    cVec3 center, normal;
    EXPECT_TRUE(cSolver::ApproximatePoints(flat, 3, &center, &normal, 0));
    EXPECT_EQ(normal, cVec3::AxisY);
    const cVec3 line[] = {{1, 5, 0}, {1, 5, 2}, {1, 5, 9}};
    EXPECT_TRUE(cSolver::ApproximatePoints(line, 3, &center, &normal, 0));
    EXPECT_EQ(normal, cVec3::AxisX) << "the first of the flat axes";
    const cVec3 slanted[] = {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}};
    EXPECT_TRUE(cSolver::ApproximatePoints(slanted, 3, &center, &normal, 0));
    EXPECT_NEAR(cVec3::Dot(normal, cVec3::One), 0, 1e-5) << "any plane through the line";
    EXPECT_FALSE(cSolver::ApproximatePoints(flat, 2, &center, &normal, 0));
    EXPECT_EQ(center, cVec3::Zero);
    EXPECT_EQ(normal, cVec3::Zero);
    const cVec3 broken[] = {{0, 0, 0}, {1, 2, NAN}, {3, 1, 1}};
    EXPECT_FALSE(cSolver::ApproximatePoints(broken, 3, &center, &normal, 0));
    EXPECT_EQ(normal, cVec3::Zero);
    EXPECT_EQ(center, cVec3::Zero);
    const cVec3 none[] = {{NAN, 0, 0}, {NAN, 2, 5}, {NAN, 1, 1}};
    EXPECT_FALSE(cSolver::ApproximatePoints(none, 3, &center, &normal, 0)) << "not flat either";
}

TEST(Solver, PointInPolygonCountsCrossings) {
    cList<cVec2> polygon;
    EXPECT_FALSE(cSolver::PointInPolygon(polygon, {0, 0}));
    for (const cVec2& v : {cVec2(0, 0), cVec2(6, 0), cVec2(6, 6), cVec2(3, 2), cVec2(0, 6)}) { // a notch at the top
        polygon.Add(v);
    }
    cList<cVec2> reversed = polygon;
    std::reverse(reversed.begin(), reversed.end());
    constexpr struct {
        float X, Y;
        bool Inside;
    } cases[] = {{1, 1, true},  {3, 1, true},  {3, 4, false},  {1, 4, true},       {5, 4, true}, {-1, 1, false},
                 {7, 1, false}, {3, 7, false}, {3, -1, false}, {5.9f, 0.1f, true}, {6, 3, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(cSolver::PointInPolygon(polygon, {c.X, c.Y}), c.Inside) << c.X << ", " << c.Y;
        if (c.X != 6) { // a point on an edge depends on the direction
            EXPECT_EQ(cSolver::PointInPolygon(reversed, {c.X, c.Y}), c.Inside) << c.X << ", " << c.Y;
        }
    }
}

} // namespace
} // namespace trellis
