#include "math/cBounds.h"
#include "math/cFrustum.h"
#include "math/cQuat.h"
#include "math/cSeg.h"
#include "math/cSphere.h"
#include "tests/math/Near.h"

namespace trellis {
namespace {

TEST(Plane, MirrorsAFrame) {
    const cPlane floor(cVec3::AxisY, -2.0f);
    EXPECT_EQ(floor.SignedDistance({0, 5, 0}), 3);
    Cases random;
    for (int i = 0; i < 50; i++) {
        const cPlane plane(cVec3::Normalize(random.Vec()), random.In(-5, 5));
        const cMat3 frame = cMat3::Rotation(cVec3::Normalize(random.Vec()), random.In(0, 360));
        const cMat3 mirrored = plane.MirrorOrient(frame.ToQuat()).ToMat3();
        for (int row = 1; row < 3; row++) { // up and back are reflected, right is what makes it a rotation
            const cVec3 v = frame.GetRow(row);
            EXPECT_TRUE(Near(mirrored.GetRow(row), v - plane.normal * (2 * cVec3::Dot(v, plane.normal)), 1e-4));
        }
    }
}

TEST(Plane, BelowIsBelowWithAllCorners) {
    const cPlane floor(cVec3::AxisY, 0.0f);
    EXPECT_TRUE(floor.BelowPlane({{0, -2, 0}, {1, -1, 1}}, cMat4::Identity));
    EXPECT_FALSE(floor.BelowPlane({{0, -2, 0}, {1, 0, 1}}, cMat4::Identity)) << "touching is not below";
    EXPECT_FALSE(floor.BelowPlane({{0, -2, 0}, {1, -1, 1}}, cMat4::Translation(0, 1.5f, 0)));
    EXPECT_FALSE(cPlane().BelowPlane({{0, -2, 0}, {1, -1, 1}}, cMat4::Identity)) << "a zero plane culls nothing";
}

/// Closest points by trying parameters, as far out as the kind goes.
double BruteDistance(cSeg::ConsiderAs as, const cSeg& a, const cSeg& b) {
    const auto at = [as](const cSeg& s, int i) {
        const double low = as == cSeg::Line ? -4 : 0, high = as == cSeg::Segment ? 1 : 4;
        return s.GetPoint(float(low + (high - low) * i / 200));
    };
    float best = cMath::FloatMaxValue;
    for (int i = 0; i <= 200; i++) {
        for (int j = 0; j <= 200; j++) {
            best = std::min(best, cVec3::DistanceSq(at(a, i), at(b, j)));
        }
    }
    return std::sqrt(best);
}

TEST(Seg, DistancesAreNeverWorseThanTrying) {
    Cases random;
    for (int i = 0; i < 30; i++) {
        const cSeg a(random.Vec(), random.Vec());
        const cVec3 start = random.Vec();
        const cSeg b = i % 5 == 0 ? cSeg(start, start + a.direction * 3.0f) : cSeg(start, random.Vec());
        for (const auto as : {cSeg::Segment, cSeg::Ray, cSeg::Line}) {
            const double tried = BruteDistance(as, a, b);
            EXPECT_LE(cSeg::Distance(as, a, b), tried + 1e-4) << i << " as " << as;
            cVec3 onA, onB;
            cSeg::ClosestPoints(as, a, b, onA, onB);
            EXPECT_NEAR(cSeg::Distance(as, a, onA), 0, 1e-3) << "on a, within its ends";
            EXPECT_NEAR(cSeg::Distance(as, b, onB), 0, 1e-3);
        }
        if (a.length > 1 && b.length > 1) {
            EXPECT_NEAR(cSeg::Distance(cSeg::Segment, a, b), BruteDistance(cSeg::Segment, a, b), 0.2);
        }
    }
}

TEST(Seg, SmallAnglesAreNotParallel) {
    const cSeg a({0, 0, 0}, {1000, 0, 0});
    EXPECT_NEAR(cSeg::Distance(cSeg::Segment, a, cSeg({0, 0.3f, 0}, {1000, 0, 0})), 0, 1e-4) << "they share an end";
    EXPECT_NEAR(cSeg::Distance(cSeg::Segment, a, cSeg({0, 0.3f, 0}, {1000, 0.3f, 0})), 0.3, 1e-6);
    cVec3 onA, onB;
    const cSeg axis({-1, 0, 0}, {1, 0, 0}), ray({0.5f, 0, 9}, {0.5f, 0, 8});
    cSeg::ClosestPoints(cSeg::Segment, axis, cSeg::Ray, ray, onA, onB);
    EXPECT_TRUE(Near(onA, cVec3(0.5f, 0, 0))) << "the ray goes on, the axis ends";
    EXPECT_TRUE(Near(onB, cVec3(0.5f, 0, 0)));
    cSeg::ClosestPoints(cSeg::Segment, axis, cSeg::Segment, ray, onA, onB);
    EXPECT_TRUE(Near(onB, cVec3(0.5f, 0, 8)));
    EXPECT_TRUE(cSeg({-1e30f, 0, 0}, {1e30f, 0, 0}).IsZero()) << "its length is beyond float";
}

TEST(Seg, ProjectionIsAFraction) {
    const cSeg s({0, 0, 0}, {4, 0, 0});
    constexpr struct {
        float X, Segment, Ray, Line;
    } cases[] = {{1, 0.25f, 0.25f, 0.25f}, {8, 1, 2, 2}, {-2, 0, 0, -0.5f}};
    for (const auto& c : cases) {
        EXPECT_EQ(s.ProjectPoint(cSeg::Segment, {c.X, 3, 0}), c.Segment);
        EXPECT_EQ(s.ProjectPoint(cSeg::Ray, {c.X, 3, 0}), c.Ray);
        EXPECT_EQ(s.ProjectPoint(cSeg::Line, {c.X, 3, 0}), c.Line);
    }
    EXPECT_EQ(cSeg::Distance(cSeg::Segment, s, {7, 4, 0}), 5);
    EXPECT_EQ(cSeg::Distance(cSeg::Line, s, {7, 4, 0}), 4);
}

TEST(Seg, ShortOnesAreZero) {
    cSeg s;
    s.SetFromEnds({1, 1, 1}, {1, 1, 1.5f}, 0.5f);
    EXPECT_FALSE(s.IsZero()) << "exactly eps is long enough";
    s.SetFromEnds({1, 1, 1}, {1, 1, 1.4f}, 0.5f);
    EXPECT_TRUE(s.IsZero());
    EXPECT_EQ(s.direction, cVec3::Zero);
    EXPECT_EQ(s.ProjectPoint(cSeg::Line, {9, 9, 9}), 0);
    EXPECT_EQ(cSeg::Distance(cSeg::Line, s, {1, 1, 3}), 2);
    const cSeg x({0, 0, 0}, {4, 0, 0});
    EXPECT_NEAR(cSeg::Distance(cSeg::Segment, x, s), std::sqrt(2.0), 1e-6);
    EXPECT_NEAR(cSeg::Distance(cSeg::Segment, s, x), std::sqrt(2.0), 1e-6);
    EXPECT_EQ(cSeg::Distance(cSeg::Segment, s, s), 0);
    s.SetFromRay({0, 0, 0}, cVec3::Zero, 0);
    EXPECT_TRUE(s.IsZero());
}

TEST(Sphere, AgainstPlanesAndLines) {
    const cSphere s({0, 5, 0}, 2);
    EXPECT_EQ(s.SignedDistanceToPlane(cPlane(cVec3::AxisY, 0.0f)), 3);
    EXPECT_EQ(s.SignedDistanceToPlane(cPlane(cVec3::AxisY, -9.0f)), -2);
    EXPECT_EQ(s.SignedDistanceToPlane(cPlane(cVec3::AxisY, -3.0f)), 0) << "touching";
    float t0 = 9, t1 = 9;
    EXPECT_TRUE(s.RayIntersection({0, 0, 0}, {0, 2, 0}, t0, t1));
    EXPECT_EQ(t0, 1.5f);
    EXPECT_EQ(t1, 3.5f);
    EXPECT_TRUE(s.RayIntersection({2, 0, 0}, {0, 1, 0}, t0, t1)) << "a tangent";
    EXPECT_EQ(t0, t1);
    EXPECT_FALSE(s.RayIntersection({2.1f, 0, 0}, {0, 1, 0}, t0, t1));
    EXPECT_FALSE(s.RayIntersection({0, 5, 0}, cVec3::Zero, t0, t1));
    const cSphere far({0, 0, -5000}, 1);
    EXPECT_TRUE(far.RayIntersection(cVec3::Zero, {0, 0, -1}, t0, t1));
    EXPECT_EQ(t0, 4999);
    EXPECT_EQ(t1, 5001);
    EXPECT_FALSE(far.RayIntersection({1.5f, 0, 0}, {0, 0, -1}, t0, t1));
    EXPECT_TRUE(s.LineIntersection({-5, 5, 0}, {5, 5, 0}));
    EXPECT_FALSE(s.LineIntersection({-5, 5, 0}, {-2, 5, 0})) << "ends on the surface";
    EXPECT_FALSE(s.LineIntersection({0, 5, 0}, {0, 5, 0.0009f})) << "too short to count";
}

TEST(Sphere, StridedArrayGivesTheNearestAhead) {
    struct Item {
        int Tag;
        cSphere Sphere;
        float Weight;
    };
    const Item items[] = {
        {1, {{0, 0, -20}, 1}, 0}, {2, {{0, 0, -10}, 1}, 0}, {3, {{0, 0, 10}, 1}, 0}, {4, {{5, 0, -5}, 1}, 0}};
    float t = 0;
    EXPECT_EQ(cSphere::RayIntersection(&items[0].Sphere, 4, sizeof(Item), cVec3::Zero, {0, 0, -1}, &t), 1);
    EXPECT_EQ(t, 9);
    EXPECT_EQ(cSphere::RayIntersection(&items[0].Sphere, 4, sizeof(Item), {0, 0, -10}, {0, 0, -1}, &t), 1);
    EXPECT_EQ(t, 1) << "from inside, where it leaves";
    EXPECT_EQ(cSphere::RayIntersection(&items[0].Sphere, 4, sizeof(Item), {0, 50, 0}, {0, 0, -1}, &t), -1);
}

TEST(Sphere, HoldsItsPoints) {
    Cases random;
    for (int i = 0; i < 100; i++) {
        const cVec3 p[] = {random.Vec(), random.Vec(), random.Vec(), random.Vec()};
        const cSphere through = cSphere::FromPoints(p[0], p[1], p[2], p[3]);
        const cSphere around = cSphere::FromPoints(p, 4);
        for (const cVec3& v : p) {
            EXPECT_NEAR(cVec3::Distance(through.center, v), through.radius, 2e-3 * around.radius);
            EXPECT_LE(cVec3::Distance(around.center, v), around.radius);
        }
    }
    for (int i = 0; i < 1000; i++) { // in a slanted plane: only noise is left in the determinant
        const cVec3 a = i % 2 ? random.Vec(100) : cVec3::Zero, u = random.Vec(100), v = random.Vec(100);
        const cVec3 p[] = {a, a + u, a + v, a + u * 0.3f + v * 0.6f};
        const cSphere s = cSphere::FromPoints(p[0], p[1], p[2], p[3]);
        const float extent = cSphere::FromPoints(p, 4).radius; // a tolerance of the result's own size could not fail
        for (const cVec3& q : p) {
            EXPECT_LE(cVec3::Distance(s.center, q), s.radius + 1e-3f * extent);
        }
    }
    const cSphere flat = cSphere::FromPoints({0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {2, 2, 0});
    EXPECT_NEAR(flat.radius, std::sqrt(2.0), 1e-5);
    EXPECT_EQ(cSphere::FromPoints(nullptr, 0).radius, 0);
}

TEST(Bounds, RayAgainstABoxOnEitherSide) {
    Cases random;
    const cBounds box({-1, -2, -3}, {1, 2, 3});
    for (int i = 0; i < 2000; i++) { // against the slabs of the whole line, in double
        const cVec3 origin = random.Vec(6), dir = random.Vec(1);
        double enter = -1e30, leave = 1e30;
        bool inside = true;
        for (int k = 0; k < 3; k++) {
            const double t0 = (double(box.min[k]) - origin[k]) / dir[k], t1 = (double(box.max[k]) - origin[k]) / dir[k];
            enter = std::max(enter, std::min(t0, t1));
            leave = std::min(leave, std::max(t0, t1));
            inside = inside && origin[k] >= box.min[k] && origin[k] <= box.max[k];
        }
        if (std::fabs(leave - enter) < 1e-4) {
            continue;
        }
        float t = 77;
        if (inside) {
            EXPECT_TRUE(box.RayIntersection(origin, dir, t));
            EXPECT_EQ(t, 0);
        } else if (enter > 0 && enter < leave) {
            EXPECT_TRUE(box.RayIntersection(origin, dir, t));
            EXPECT_NEAR(t, enter, 1e-3 * (1 + enter));
        } else if (enter > leave && box.RayIntersection(origin, dir, t)) {
            ADD_FAILURE() << "the line misses the box";
        }
    }
    float t = 0;
    EXPECT_TRUE(box.RayIntersection({5, 0, 0}, {1, 0, 0}, t)) << "a hit behind the origin counts";
    EXPECT_EQ(t, -4);
    EXPECT_FALSE(box.RayIntersection({5, 0, 0}, {0, 1, 0}, t));
    EXPECT_FALSE(box.RayIntersection({5, 0, 0}, cVec3::Zero, t));
    EXPECT_FALSE(cBounds::Empty.RayIntersection({0, 0, 0}, {1, 0, 0}, t));
}

TEST(Bounds, EmptyHoldsNothingAndStaysEmpty) {
    EXPECT_TRUE(cBounds::Empty.IsEmpty());
    EXPECT_FALSE(cBounds::Empty.ContainsPoint(cVec3::Zero));
    EXPECT_FALSE(cBounds::Empty.ContainsLine(cVec3(-1, -1, -1), cVec3(1, 1, 1)));
    EXPECT_EQ(cBounds::Transform(cBounds::Empty, cMat4::Translation(1, 2, 3)), cBounds::Empty);
    EXPECT_EQ(cBounds::FromPoints(cList<cVec3>()), cBounds::Empty);
    EXPECT_TRUE((Bounds<int, 2>({0, 0}, {0, 0}).ContainsPoint({0, 0})));
}

TEST(Bounds, TransformedBoxIsTheBoxOfItsCorners) {
    const cBounds box({0, 0, 0}, {2, 1, 1});
    const cBounds turned = cBounds::Transform(box, cMat4::RotationZ(90) * cMat4::Translation(5, 0, 0));
    EXPECT_TRUE(Near(cVec3(turned.min), cVec3(4, 0, 0)));
    EXPECT_TRUE(Near(cVec3(turned.max), cVec3(5, 2, 1)));
    const cVec2 flat[] = {{3, -1}, {-2, 4}};
    EXPECT_EQ(cBounds::FromPoints(flat, 2), cBounds({-2, -1, 0}, {3, 4, 0}));
    EXPECT_EQ(box.DistanceToPointSq({4, 0.5f, -1}), 5);
    EXPECT_EQ(box.DistanceToPointSq({1, 1, 1}), 0);
}

TEST(Bounds, LinesTouchOrMiss) {
    const Bounds<int, 2> box({0, 0}, {10, 10});
    constexpr struct {
        const char* Name;
        int X0, Y0, X1, Y1;
        bool Hit;
    } cases[] = {{"inside", 2, 2, 3, 3, true},
                 {"through", -5, 5, 15, 5, true},
                 {"corner", -5, 5, 5, 15, true},
                 {"past the corner", -5, 6, 5, 16, false},
                 {"short of it", -5, 5, -1, 5, false},
                 {"along an edge", 0, -5, 0, 20, true},
                 {"beside an edge", -1, -5, -1, 20, false},
                 {"a point on the edge", 10, 4, 10, 4, true},
                 {"a point outside", 11, 4, 11, 4, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(box.ContainsLine({c.X0, c.Y0}, {c.X1, c.Y1}), c.Hit) << c.Name;
        EXPECT_EQ(box.ContainsLine({c.X1, c.Y1}, {c.X0, c.Y0}), c.Hit) << c.Name;
    }
    EXPECT_FALSE(cBounds::One.ContainsLine(cVec3(NAN, 0.5f, 0.5f), cVec3(NAN, 0.5f, 0.6f)));
    const int big = cMath::IntMaxValue;
    EXPECT_TRUE(box.ContainsLine({-big, 5}, {big, 5})) << "differences beyond an int";
}

/// What an eye at the origin sees that looks along -Z, from 1 to 10, with half angles of 45 degrees.
cFrustum MakeFrustum() {
    cFrustum f;
    for (int i = 0; i < 8; i++) {
        const float d = i < 4 ? 1 : 10;
        f.corners[i] = {(i % 4 == 1 || i % 4 == 2) ? d : -d, i % 4 >= 2 ? d : -d, -d};
    }
    f.CalcPlanes();
    return f;
}

TEST(Frustum, PlanesFaceInward) {
    const cFrustum f = MakeFrustum();
    Cases random;
    for (int i = 0; i < 2000; i++) {
        const cVec3 p = random.Vec(12);
        const float margin = std::min({-p.z - 1, 10 + p.z, -p.z - std::fabs(p.x), -p.z - std::fabs(p.y)});
        if (std::fabs(margin) > 1e-3f) {
            EXPECT_EQ(f.CullPoint(p), margin < 0) << p.ToString(2).Text();
        }
    }
    EXPECT_FALSE(f.CullBounds({{-1, -1, -1}, {1, 1, 1}}, cMat4::Translation(0, 0, -5)));
    EXPECT_TRUE(f.CullBounds({{-1, -1, -1}, {1, 1, 1}}, cMat4::Translation(0, 0, 5)));
    EXPECT_FALSE(f.CullBounds({{-99, -99, -99}, {99, 99, 99}}, cMat4::Identity)) << "around it all";
    EXPECT_TRUE(f.CullBounds(cBounds::Empty, cMat4::Identity));
}

TEST(Frustum, CollapsedFacesCullNothing) {
    cFrustum f = MakeFrustum();
    f.corners[4] = f.corners[7]; // the far face's first triangle, and the left face's
    f.CalcPlanes();
    EXPECT_EQ(f.planes[1], cPlane());
    EXPECT_EQ(f.planes[4], cPlane());
    EXPECT_TRUE(f.CullPoint({0, 0, 1})) << "the near face still does";
    f = MakeFrustum();
    f.planes[1] = cPlane();
    EXPECT_FALSE(f.CullPoint({0, 0, -50})) << "nothing is left at the far end";
    cFrustum zero = cFrustum::Zero;
    zero.CalcPlanes();
    EXPECT_FALSE(zero.CullPoint({1, 2, 3}));
}

TEST(Frustum, ScalesItsEndFaces) {
    cFrustum f = MakeFrustum();
    f.Scale({0.5f, 2});
    EXPECT_TRUE(Near(f.corners[0], cVec3(-0.5f, -2, -1)));
    EXPECT_TRUE(Near(f.corners[6], cVec3(5, 20, -10)));
    EXPECT_TRUE(f.CullPoint({4, 0, -5}));
    EXPECT_FALSE(f.CullPoint({0, 9, -5}));
}

} // namespace
} // namespace trellis
