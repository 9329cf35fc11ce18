#include "math/cAngles.h"
#include "math/cQuat.h"
#include "math/cRotation.h"
#include "tests/math/Near.h"

namespace trellis {
namespace {

/// The rotations of row vectors, worked out anew in double: rows (1,0,0) (0,c,s) (0,-s,c) and their turns.
struct Reference {
    double m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

    Reference Turned(int axis, double degrees) const {
        const double a = degrees * 3.14159265358979323846 / 180;
        const int i = (axis + 1) % 3, j = (axis + 2) % 3;
        Reference r = *this;
        for (int row = 0; row < 3; row++) { // this x rotation
            r.m[row][i] = m[row][i] * std::cos(a) - m[row][j] * std::sin(a);
            r.m[row][j] = m[row][i] * std::sin(a) + m[row][j] * std::cos(a);
        }
        return r;
    }
    cMat3 ToMat3() const {
        cMat3 r;
        for (int i = 0; i < 9; i++) {
            r.m[i] = float(m[i / 3][i % 3]);
        }
        return r;
    }
};

cMat3 ReferenceXYZ(const cAngles& a) {
    return Reference().Turned(0, a.x).Turned(1, a.y).Turned(2, a.z).ToMat3();
}

/// Every combination of quarter turns, where the poles are, and seeded ones around them.
std::vector<cAngles> AngleCases() {
    std::vector<cAngles> cases;
    for (int x = -180; x <= 180; x += 90) {
        for (int y = -180; y <= 180; y += 90) {
            for (int z = -180; z <= 180; z += 90) {
                cases.emplace_back(float(x), float(y), float(z));
            }
        }
    }
    Cases random;
    for (int i = 0; i < 500; i++) {
        cases.emplace_back(random.In(-360, 360), i % 5 == 0 ? 90.0f : random.In(-360, 360), random.In(-360, 360));
    }
    return cases;
}

TEST(Rotation, FormsAgreeWithTheReference) {
    for (const cAngles& a : AngleCases()) {
        SCOPED_TRACE(a.ToString(3).Text());
        const cMat3 expected = ReferenceXYZ(a);
        EXPECT_TRUE(Near(a.ToMat3(), expected));
        EXPECT_TRUE(Near(a.ToQuat().ToMat3(), expected, 1e-4));
        EXPECT_TRUE(Near(expected.ToAngles().ToMat3(), expected, 2e-3)); // asin near the pole costs half the digits
        if (std::fabs(expected.m[2]) < 0.9999f) { // a hair off the pole, where rounding puts it, x and z are noise
            EXPECT_TRUE(Near(a.ToQuat().ToAngles().ToMat3(), expected, 2e-3));
        }
        EXPECT_TRUE(Near(a.ToQuat().ToRotation().ToMat3(), expected, 1e-4));
        EXPECT_NEAR(a.ToQuat().Length(), 1, 1e-5);
        EXPECT_TRUE(Near(a.ToForward(), -expected.GetRow(2)));
        EXPECT_TRUE(Near(a.ToRight(), expected.GetRow(0)));
        EXPECT_TRUE(Near(a.ToUp(), expected.GetRow(1)));
        EXPECT_TRUE(Near(a.ToForward().ToAngles().ToForward(), a.ToForward(), 2e-3));
    }
}

TEST(Rotation, AboutAnAxisFollowsRodrigues) {
    Cases random;
    for (int i = 0; i < 200; i++) {
        const cVec3 axis = cVec3::Normalize(random.Vec());
        const float angle = random.In(-720, 720);
        const cVec3 v = random.Vec();
        const cMat3 before = cMat3::Rotation(cVec3::Normalize(random.Vec()), random.In(-180, 180));
        const double radians = double(angle) * 3.14159265358979323846 / 180;
        const cVec3 expected = v * float(std::cos(radians)) + cVec3::Cross(axis, v) * float(std::sin(radians)) +
                               axis * (cVec3::Dot(axis, v) * float(1 - std::cos(radians)));
        const cRotation rotation(cVec3::Zero, axis, angle);
        EXPECT_TRUE(Near(v * cMat3::Rotation(axis, angle), expected, 2e-4));
        EXPECT_TRUE(Near(v * rotation.ToMat4(), expected, 2e-4));
        EXPECT_TRUE(Near(cQuat::Rotate(v, rotation.ToQuat()), expected, 2e-4));
        EXPECT_TRUE(Near(cQuat::Rotate(v, rotation.ToQuat() * before.ToQuat()), (v * before) * rotation.ToMat4(), 2e-4))
            << "the second factor first";
        EXPECT_TRUE(Near(v * rotation.ToAngles().ToMat3(), expected, 2e-2));
    }
}

TEST(Rotation, PositiveAnglesAreRightHanded) {
    EXPECT_TRUE(Near(cVec3::AxisNegZ * cMat3::RotationY(90), cVec3::AxisNegX)); // left, seen from above
    EXPECT_TRUE(Near(cVec3::AxisY * cMat3::RotationX(90), cVec3::AxisZ));
    EXPECT_TRUE(Near(cVec3::AxisX * cMat3::RotationZ(90), cVec3::AxisY));
    EXPECT_EQ(cAngles::Zero.ToForward(), cVec3::AxisNegZ);
    EXPECT_EQ(cVec3::AxisNegZ.ToAngles(), cAngles::Zero);
    EXPECT_EQ(cVec3::AxisY.ToAngles(), cAngles(90, 0, 0));
    EXPECT_EQ((cVec3{0, -1.5f, 0}).ToAngles(), cAngles(-90, 0, 0)) << "clamped";
}

TEST(Rotation, EulerZYXIsTheTransposedColumnForm) {
    const cMat3 rowForm = cMat3::RotationX(20) * cMat3::RotationY(30) * cMat3::RotationZ(50);
    EXPECT_TRUE(Near(cMat3::EulerZYX(20, 30, 50), cMat3::Transpose(rowForm)));
}

TEST(Rotation, GimbalLockGivesXTheWholeTurn) {
    for (const float y : {90.0f, -90.0f}) {
        const cAngles a = cMat3::RotationXYZ(25, y, 40).ToAngles();
        EXPECT_EQ(a.y, y);
        EXPECT_EQ(a.z, 0);
        EXPECT_TRUE(Near(a.ToMat3(), cMat3::RotationXYZ(25, y, 40)));
    }
}

TEST(Rotation, QuaternionOfAnUnevenMatrixIsThatOfItsFrame) {
    const cMat3 frame = cMat3::RotationXYZ(30, 40, 50);
    EXPECT_TRUE(Near((cMat3::Scaling(3, 0.5f, 7) * frame).ToQuat(), frame.ToQuat()));
    EXPECT_EQ(cMat3::Zero.ToQuat(), cQuat(0.5f, 0, 0, 0)); // by the letter of the largest diagonal element
    EXPECT_EQ(cQuat::Zero.ToMat3(), cMat3::Identity);
    EXPECT_EQ(cQuat(0, 0, 0, 1e-20f).ToMat3(), cMat3::Identity);
    EXPECT_TRUE(Near((frame.ToQuat() * 5.0f).ToMat3(), frame)) << "any length will do";
}

TEST(Rotation, NormalizedRanges) {
    constexpr struct {
        float In, To360, To180;
    } cases[] = {{-10, 350, -10}, {190, 190, -170},        {180, 180, 180}, {-180, 180, 180},
                 {360, 0, 0},     {359.5f, 359.5f, -0.5f}, {0, 0, 0},       {725, 5, 5},
                 {-1e-9f, 0, 0},  {-1.71224397e9f, 0, 0}}; // the last two round out of the range
    for (const auto& c : cases) {
        SCOPED_TRACE(c.In);
        cAngles a(c.In, c.In, c.In), b = a;
        a.Normalize360();
        b.Normalize180();
        EXPECT_EQ(a, cAngles(c.To360, c.To360, c.To360));
        EXPECT_EQ(b, cAngles(c.To180, c.To180, c.To180));
        cRotation r(cVec3::Zero, cVec3::AxisY, c.In);
        r.Normalize360();
        EXPECT_EQ(r.angle, c.To360);
        r.ToMat3();
        r.Normalize180();
        EXPECT_FALSE(r.matValid);
        EXPECT_EQ(r.angle, c.To180);
    }
}

TEST(Rotation, ShortestPathStaysWithinHalfATurn) {
    cAngles a(350, 10, -170), b(20, -170, 170);
    cAngles::EnsureShortestPath(&a, &b);
    EXPECT_EQ(a, cAngles(-10, 10, -170));
    EXPECT_EQ(b, cAngles(20, 190, -190)) << "a difference of exactly -180 goes the positive way";
}

TEST(Rotation, SlerpTakesTheShortWayWhateverTheFlag) {
    const cQuat a = cMat3::RotationY(10).ToQuat();
    const cQuat b = cMat3::RotationY(70).ToQuat();
    for (const bool shortest : {true, false}) {
        for (const cQuat& end : {b, -b}) {
            EXPECT_TRUE(Near(cQuat::Slerp(a, end, 0.25f, shortest), cMat3::RotationY(25).ToQuat()));
        }
    }
    const cQuat near = cMat3::RotationY(10.001f).ToQuat();
    EXPECT_TRUE(Near(cQuat::Slerp(a, near, 0.5f), a)) << "a hair apart goes linearly";
    EXPECT_NEAR(cQuat::Slerp(a * 2.0f, a * 2.0f, 0.5f).Length(), 2, 1e-5) << "not normalised";
    EXPECT_TRUE(Near(cQuat::Lerp(a, -b, 0.5f, true), cMat3::RotationY(40).ToQuat()));
    EXPECT_TRUE(Near(cQuat::Lerp(a, -b, 0.5f, false), cQuat::Normalize(a - b)));
}

TEST(Rotation, ExponentialAndSpline) {
    Cases random;
    for (int i = 0; i < 50; i++) {
        const cQuat q = cMat3::Rotation(cVec3::Normalize(random.Vec()), random.In(-170, 170)).ToQuat();
        const cQuat r = cMat3::Rotation(cVec3::Normalize(random.Vec()), random.In(-60, 60)).ToQuat();
        EXPECT_TRUE(Near(cQuat::Exp(cQuat::Ln(q)), q, 1e-4));
        EXPECT_TRUE(Near(q * cQuat::Exp(cQuat::LnDif(q, r)), r, 1e-4));
        const cQuat inner = cQuat::SquadSetup(q, q, q);
        EXPECT_TRUE(Near(inner, q, 1e-4)) << "a standing curve has no bend";
        EXPECT_TRUE(Near(cQuat::Squad(q, inner, r, r, 0), q, 1e-4));
        EXPECT_TRUE(Near(cQuat::Squad(q, inner, q, q, 1), q, 1e-4));
    }
    // On a steady turn the inner point is the point itself, and the curve goes on at the same speed.
    const cQuat s =
        cQuat::SquadSetup(cMat3::RotationZ(10).ToQuat(), cMat3::RotationZ(30).ToQuat(), cMat3::RotationZ(50).ToQuat());
    EXPECT_TRUE(Near(s, cMat3::RotationZ(30).ToQuat()));
}

TEST(Rotation, AngularVelocity) {
    EXPECT_TRUE(Near(cMat3::RotationZ(60).ToQuat().ToAngularVelocity(), cVec3(0, 0, cMath::Pi / 6)))
        << "the half angle";
    EXPECT_EQ(cQuat(0, 3, 0, 1.5f).ToAngularVelocity(), cVec3::Zero);
    EXPECT_EQ(cQuat(0, 3, 0, -1.5f).ToAngularVelocity(), cVec3(0, cMath::Pi, 0));
    EXPECT_TRUE(Near(cRotation(cVec3::Zero, cVec3::AxisY, 90).ToAngularVelocity(), cVec3(0, cMath::HalfPi, 0)));
}

} // namespace
} // namespace trellis
