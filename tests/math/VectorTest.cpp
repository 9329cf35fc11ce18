#include "math/cAngles.h"
#include "tests/math/Near.h"

#include <sstream>
#include <type_traits>

namespace trellis {
namespace {

static_assert(std::is_trivially_copyable_v<cVec3> && std::is_trivially_default_constructible_v<cVec3>);
static_assert(sizeof(cVec2) == 8 && sizeof(cVec3) == 12 && sizeof(cVec4) == 16 && sizeof(cVec<int, 3>) == 12);
static_assert(cVec3() == cVec3::Zero && cVec<int, 3>() == cVec<int, 3>::ZERO);
static_assert(cVec<int, 2>::UNDEFINED[1] == 2147483647 && cVec<float, 4>::UNDEFINED[3] == cMath::FloatMaxValue);
static_assert(cVec3::AxisX * 2.0f - cVec3::AxisZ == cVec3(2, 0, -1) && cVec2::Cross(cVec2::AxisX, cVec2::AxisY) == 1);
static_assert(cVec3::Cross(cVec3::AxisX, cVec3::AxisY) == cVec3::AxisZ);

TEST(Vector, TextForms) {
    EXPECT_STREQ(cVec3(1, -2.25f, 0.5f).ToString(2), "1.00 -2.25 0.50");
    EXPECT_STREQ((cVec<int, 2>(3, -4).ToString(2)), "3 -4");
    cStr text;
    text << cVec2(1, 2);
    std::ostringstream stream;
    stream << cVec2(1, 2);
    EXPECT_STREQ(text, "1.000000 2.000000");
    EXPECT_EQ(stream.str(), text.Text());
}

TEST(Vector, ZeroStaysZero) {
    cVec3 zero = cVec3::Zero, a, b;
    EXPECT_EQ(zero.Normalize(), 0);
    EXPECT_EQ(zero, cVec3::Zero);
    zero.ToPerps(a, b);
    EXPECT_EQ(a, cVec3::Zero);
    EXPECT_EQ(b, cVec3::Zero);
}

TEST(Vector, HomogeneousAssignments) {
    cVec3 p;
    p = cVec4(2, 4, 6, 2);
    EXPECT_EQ(p, cVec3(1, 2, 3));
    cVec4 h;
    h = p;
    EXPECT_EQ(h, cVec4(1, 2, 3, 1));
}

TEST(Vector, PerpendicularsFormAFrame) {
    Cases random;
    for (int i = 0; i < 200; i++) {
        const cVec3 v = i < 6 ? cVec3(i % 3 == 0, i % 3 == 1, i % 3 == 2) * (i < 3 ? 1.0f : -4.0f) : random.Vec();
        cVec3 a, b;
        v.ToPerps(a, b);
        EXPECT_NEAR(cVec3::Dot(v, a), 0, 1e-4);
        EXPECT_NEAR(cVec3::Dot(v, b), 0, 1e-4);
        EXPECT_NEAR(cVec3::Dot(a, b), 0, 1e-5);
        EXPECT_NEAR(a.Length(), 1, 1e-5);
        EXPECT_NEAR(b.Length(), 1, 1e-5);
        EXPECT_EQ(v.ToPerp(), a);
    }
}

TEST(Vector, SnappingOfNormals) {
    constexpr struct {
        const char* Name;
        cVec3 In, Degenerate;
        bool DegenerateChanged;
        cVec3 Denormal;
        bool DenormalChanged;
    } cases[] = {
        {"two zeros", {0, 0, -0.3f}, {0, 0, -1}, true, {0, 0, -0.3f}, false},
        {"no direction", {0, 0, 0}, {1, 0, 0}, true, {0, 0, 0}, false},
        {"a unit component", {0.2f, 1, -0.1f}, {0, 1, 0}, true, {0.2f, 1, -0.1f}, false},
        {"an axis already", {-1, 0, 0}, {-1, 0, 0}, false, {-1, 0, 0}, false},
        {"nothing exact", {0.6f, 0.8f, 0.0005f}, {0.6f, 0.8f, 0.0005f}, false, {0.6f, 0.8f, 0}, true},
        {"nearly an axis", {0.0015f, -0.9995f, 0.001f}, {0.0015f, -0.9995f, 0.001f}, false, {0.0015f, -1, 0}, true},
        {"just too far", {0.00101f, 0.9985f, 0.5f}, {0.00101f, 0.9985f, 0.5f}, false, {0.00101f, 0.9985f, 0.5f}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        cVec3 a = c.In, b = c.In;
        EXPECT_EQ(a.FixDegenerateNormal(), c.DegenerateChanged);
        EXPECT_EQ(a, c.Degenerate);
        EXPECT_EQ(b.FixDenormals(), c.DenormalChanged);
        EXPECT_EQ(b, c.Denormal);
    }
}

TEST(Vector, SlerpTurnsSteadilyAndHasNoShortWay) {
    EXPECT_TRUE(Near(cVec3::Slerp(cVec3::AxisX, cVec3::AxisY, 1 / 3.0f), cVec3(0.8660254f, 0.5f, 0)));
    const cVec3 wide = cVec3(-0.5f, 0.8660254f, 0); // 120 degrees: nothing is negated
    EXPECT_TRUE(Near(cVec3::Slerp(cVec3::AxisX, wide, 0.5f), cVec3(0.5f, 0.8660254f, 0)));
    EXPECT_EQ(cVec3::Slerp(cVec3::AxisX, cVec3::AxisY, -1), cVec3::AxisX);
    EXPECT_EQ(cVec3::Slerp(cVec3::AxisX, cVec3::AxisY, 2), cVec3::AxisY);
    EXPECT_EQ(cVec3::Slerp(cVec3::AxisX, cVec3::AxisX, 0.5f), cVec3::AxisX);
}

TEST(Vector, RayAgainstTriangles) {
    const cVec3 a(0, 0, 0), b(4, 0, 0), c(0, 4, 0);
    float t = 0, u = 0, v = 0;
    EXPECT_TRUE(cVec3::RayTri({1, 2, 6}, {0, 0, -2}, a, b, c, &t, &u, &v));
    EXPECT_EQ(t, 3);
    EXPECT_EQ(u, 0.25f);
    EXPECT_EQ(v, 0.5f);
    EXPECT_TRUE(cVec3::RayTri({1, 2, -6}, {0, 0, -2}, a, b, c, &t)) << "from behind, and behind the origin";
    EXPECT_EQ(t, -3);
    EXPECT_FALSE(cVec3::RayTri({3, 2, 6}, {0, 0, -2}, a, b, c, &t));
    EXPECT_FALSE(cVec3::RayTri({1, 2, 0}, {1, 0, 0}, a, b, c, &t)) << "along the plane";
    EXPECT_FALSE(cVec3::RayTri({1, 2, 6}, {0, 0, -2}, a, a, a, &t)) << "no area";

    Cases random;
    for (int i = 0; i < 500; i++) { // against the weights of the point that was aimed at
        const cVec3 p = random.Vec(), q = random.Vec(), r = random.Vec(), eye = random.Vec();
        const float wq = random.In(-0.5f, 1), wr = random.In(-0.5f, 1);
        const cVec3 aim = p + (q - p) * wq + (r - p) * wr;
        const float margin = std::min({wq, wr, 1 - wq - wr});
        if (std::fabs(margin) > 0.01f) {
            EXPECT_EQ(cVec3::RayTri(eye, aim - eye, p, q, r, &t), margin > 0) << i;
        }
    }
}

TEST(Vector, PointInTriangleOwnsTheEdgesFromItsFirstCorner) {
    const cVec3 a(0, 0, 0), b(4, 0, 0), c(0, 4, 0);
    EXPECT_TRUE(cVec3::PointInTriangle({1, 1, 0}, a, b, c));
    EXPECT_TRUE(cVec3::PointInTriangle({2, 0, 0}, a, b, c));
    EXPECT_TRUE(cVec3::PointInTriangle(a, a, b, c));
    EXPECT_FALSE(cVec3::PointInTriangle({2, 2, 0}, a, b, c)) << "on the edge that faces a";
    EXPECT_FALSE(cVec3::PointInTriangle({-0.1f, 1, 0}, a, b, c));
    EXPECT_FALSE(cVec3::PointInTriangle({1, 1, 0}, a, b, b)) << "no area";
}

TEST(Vector, PlaneSegments) {
    float t = -1;
    EXPECT_EQ(cVec2(1, 3).DistanceToLineSegSq({0, 0}, {4, 0}, &t), 9);
    EXPECT_EQ(t, 0.25f);
    EXPECT_EQ(cVec2(-3, 4).DistanceToLineSegSq({0, 0}, {4, 0}, &t), 25);
    EXPECT_EQ(t, 0);
    EXPECT_EQ(cVec2(7, 4).DistanceToLineSegSq({4, 0}, {4, 0}), 25) << "a zero segment is a point";
    cVec2 p;
    EXPECT_TRUE(cVec2::SegIntersection({0, 0}, {4, 4}, {0, 4}, {4, 0}, &p));
    EXPECT_EQ(p, cVec2(2, 2));
    EXPECT_TRUE(cVec2::SegIntersection({0, 0}, {4, 0}, {4, 0}, {4, 9}, &p)) << "ends included";
    EXPECT_TRUE(cVec2::SegIntersection({0, 0}, {4, 0}, {0, -1}, {0, 1}, &p)) << "the first end too";
    EXPECT_FALSE(cVec2::SegIntersection({0, 0}, {4, 0}, {-1, -1}, {-1, 1}, &p));
    EXPECT_FALSE(cVec2::SegIntersection({0, 0}, {4, 0}, {5, -1}, {5, 1}, &p));
    EXPECT_FALSE(cVec2::SegIntersection({0, 0}, {4, 0}, {0, 0}, {4, 0}, &p)) << "parallel";
}

TEST(Vector, RandomNormalsLeanNowhere) {
    cMath::Randomize(1);
    cVec3 sum = cVec3::Zero;
    float cubed = 0; // |x|^4 + |y|^4 + |z|^4 has the mean 3/5 on a sphere, and less with corners preferred
    for (int i = 0; i < 20000; i++) {
        const cVec3 v = cVec3::RandNormal();
        ASSERT_NEAR(v.Length(), 1, 1e-5);
        sum += v;
        cubed += v.x * v.x * v.x * v.x + v.y * v.y * v.y * v.y + v.z * v.z * v.z * v.z;
    }
    EXPECT_LT(sum.Length() / 20000, 0.02f);
    EXPECT_NEAR(cubed / 20000, 0.6f, 0.01f);
}

} // namespace
} // namespace trellis
