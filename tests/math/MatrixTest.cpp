#include "foundation/cList.h"
#include "math/cAngles.h"
#include "math/cBounds.h"
#include "math/cQuat.h"
#include "tests/math/Near.h"

#include <cstring>

namespace trellis {
namespace {

cVec3 Project(const cVec3& p, const cMat4& m) {
    cVec3 r;
    r = cVec4(p, 1) * m;
    return r;
}

bool SameBits(const cMat4& a, const cMat4& b) {
    return std::memcmp(&a, &b, sizeof(a)) == 0;
}

TEST(Matrix, ProductsAndInverses) {
    Cases random;
    for (int i = 0; i < 300; i++) {
        const cMat4 a = random.Mat(), b = random.Mat();
        const cVec4 v(random.Vec(1), 1);
        EXPECT_TRUE(Near((v * a) * b, v * (a * b), 1e-4));
        cMat4 plain, fast;
        cMat4::MultiplyPlain(a, b, &plain);
        cMat4::Multiply(a, b, &fast);
        EXPECT_TRUE(SameBits(plain, fast));
        fast = b;
        cMat4::Multiply(a, fast, &fast); // in place
        EXPECT_TRUE(SameBits(plain, fast));
        fast = a;
        cMat4::Multiply(fast, b, &fast);
        EXPECT_TRUE(SameBits(plain, fast));

        cMat4 inverse = a;
        if (cMat4::Invert(inverse, &inverse) && std::fabs(inverse.m[0]) < 10) {
            EXPECT_TRUE(Near(a * inverse, cMat4::Identity, 2e-3));
            cMat4 inversePlain;
            EXPECT_TRUE(cMat4::InvertPlain(a, &inversePlain));
            EXPECT_TRUE(SameBits(inverse, inversePlain));
        }
        cMat3 inverse3;
        const cMat3 a3 = a.ToMat3();
        if (cMat3::Invert(a3, &inverse3) && std::fabs(a3.Determinant()) > 0.1f) {
            EXPECT_TRUE(Near(a3 * inverse3, cMat3::Identity, 1e-3));
        }
    }
}

TEST(Matrix, SingularOnesAreRefusedAndLeaveTheOutput) {
    cMat3 out3 = cMat3::Identity;
    cMat4 out4 = cMat4::Identity;
    EXPECT_FALSE(cMat3::Invert(cMat3::Zero, &out3));
    EXPECT_FALSE(cMat3::Invert(cMat3(1, 2, 3, 2, 4, 6, 0, 0, 1), &out3));
    EXPECT_FALSE(cMat4::Invert(cMat4::Scaling(1, 1, 0), &out4));
    EXPECT_FALSE(cMat4::Invert(cMat4::Scaling(NAN, 1, 1), &out4));
    EXPECT_EQ(out3, cMat3::Identity);
    EXPECT_EQ(out4, cMat4::Identity);
    EXPECT_TRUE(cMat3::Invert(cMat3::Scaling(1e-4f, 1e-4f, 1e-4f), &out3)) << "1e-12 is above the limit";
    EXPECT_FALSE(cMat3::Invert(cMat3::Scaling(1e-5f, 1e-5f, 1e-5f), &out3)) << "1e-15 is below it";
}

TEST(Matrix, TransformedArraysEqualSinglePoints) {
    Cases random;
    const cMat4 m = random.Mat();
    for (int n = 0; n <= 13; n++) { // whole fours and every remainder
        cList<cVec3> points, normals;
        for (int i = 0; i < n; i++) {
            points.Add(random.Vec());
        }
        points.Add(cVec3(7, 7, 7)); // behind the end
        normals = points;
        const cList<cVec3> source = points;
        cVec3::TransformCoordinate(points.Data(), n, m);
        cVec3::TransformNormal(normals.Data(), n, m);
        for (int i = 0; i < n; i++) {
            EXPECT_EQ(points[i], source[i] * m) << i;
            EXPECT_EQ(normals[i], source[i] * m.ToMat3()) << i;
        }
        EXPECT_EQ(points[n], cVec3(7, 7, 7));
        EXPECT_EQ(normals[n], cVec3(7, 7, 7));
    }
}

TEST(Matrix, NormalsKeepTheSignOfZero) {
    cVec3 normals[4] = {{-0.0f, -0.0f, -0.0f}, {0, 0, 0}, {-0.0f, 0, 0}, {0, -0.0f, 0}};
    cVec3::TransformNormal(normals, 4, cMat4::Identity);
    EXPECT_TRUE(std::signbit(normals[0].x));
    EXPECT_FALSE(std::signbit(normals[1].x));
}

TEST(Matrix, NormalsStayPerpendicular) {
    Cases random;
    for (int i = 0; i < 100; i++) {
        const cMat4 m = cMat4::Scaling(random.Vec(3)) * cMat4::RotationXYZ(random.In(0, 360), 40, 50) *
                        cMat4::Translation(random.Vec());
        cVec3 u, v;
        const cVec3 n = cVec3::Normalize(random.Vec());
        n.ToPerps(u, v);
        const cVec3 moved = n * m.ToNormalMatrix();
        EXPECT_NEAR(cVec3::Dot(moved, u * m.ToMat3()), 0, 1e-3 * moved.Length() * 10);
        EXPECT_NEAR(cVec3::Dot(moved, v * m.ToMat3()), 0, 1e-3 * moved.Length() * 10);
    }
    EXPECT_EQ(cMat4::Scaling(1, 0, 1).ToNormalMatrix(), cMat3::Identity);
}

TEST(Matrix, TransformsAboutAPoint) {
    EXPECT_TRUE(Near(cVec3(2, 1, 5) * cMat4::RotationAt(cVec3(1, 1, 0), cVec3::AxisZ, 90), cVec3(1, 2, 5)));
    EXPECT_TRUE(Near(cVec3(2, 1, 5) * cMat4::RotationAt(cVec2(1, 1), 90), cVec3(1, 2, 5)));
    EXPECT_TRUE(Near(cVec3(2, 1, 5) * cMat4::ScalingAt(cVec3(1, 1, 1), cVec3(2, 3, 4)), cVec3(3, 1, 17)));
    EXPECT_TRUE(Near(cVec3(2, 2, 5) * cMat4::ScalingAt(cVec2(1, 1), cVec2(2, 3)), cVec3(3, 4, 5)));
    EXPECT_EQ(cMat4::Scaling(2), cMat4::Scaling(2, 1, 1)) << "a missing factor is 1";
    cMat4 posed = cMat4::Translation(1, 2, 3);
    posed.SetRotation(cAngles(10, 20, 30));
    EXPECT_TRUE(Near(posed.GetRotation(), cAngles(10, 20, 30), 1e-3));
    EXPECT_EQ(posed.GetTranslation(), cVec3(1, 2, 3));
}

TEST(Matrix, DepthOfProjections) {
    const cMat4 perspective = cMat4::Perspective(90, 2, 1, 100);
    const cMat4 infinite = cMat4::PerspectiveInf(90, 2, 1);
    const cMat4 ortho = cMat4::Ortho(20, 10, 1, 100);
    EXPECT_TRUE(Near(Project({2, 1, -1}, perspective), cVec3(1, 1, -1)));
    EXPECT_TRUE(Near(Project({-200, -100, -100}, perspective), cVec3(-1, -1, 1), 1e-4));
    EXPECT_TRUE(Near(Project({2, 1, -1}, infinite), cVec3(1, 1, -1)));
    EXPECT_NEAR(Project({0, 0, -1e6f}, infinite).z, 0.999, 1e-4) << "the far plane never quite reaches 1";
    EXPECT_TRUE(Near(Project({10, 5, -1}, ortho), cVec3(1, 1, 0))) << "from 0, unlike the perspective";
    EXPECT_TRUE(Near(Project({-10, -5, -100}, ortho), cVec3(-1, -1, 1)));
    const cMat4 off = cMat4::Ortho(cBounds({2, 3, 1}, {6, 5, 9}));
    EXPECT_TRUE(Near(Project({2, 3, -1}, off), cVec3(-1, -1, 0)));
    EXPECT_TRUE(Near(Project({6, 5, -9}, off), cVec3(1, 1, 1)));
}

TEST(Matrix, LookAtCarriesWhatTheEyeSees) {
    const cVec3 eye(3, 4, 5), target(-2, 1, 0);
    const cMat4 m = cMat4::LookAtViewProjection(eye, target, 60, 1.5f, 0.5f, 50);
    EXPECT_NEAR(Project(target, m).x, 0, 1e-5);
    EXPECT_NEAR(Project(target, m).y, 0, 1e-5);
    EXPECT_GT(Project(target + cVec3::AxisY, m).y, 0) << "up is up";
    const cVec3 right = cVec3::Cross(target - eye, cVec3::AxisY);
    EXPECT_GT(Project(target + right, m).x, 0) << "right is right";
    const cVec3 forward = cVec3::Normalize(target - eye);
    EXPECT_NEAR(Project(eye + forward * 0.5f, m).z, -1, 1e-4);
    EXPECT_NEAR(Project(eye + forward * 50.0f, m).z, 1, 1e-4);
    // The same through a matrix built of the frame's axes: the view is the frame's inverse.
    cVec3 r = cVec3::Normalize(right);
    const cMat4 frame(cMat3::FromVectors(forward, r, cVec3::Cross(r, forward)), eye);
    cMat4 view;
    ASSERT_TRUE(cMat4::Invert(frame, &view));
    EXPECT_TRUE(Near(view * cMat4::Perspective(60, 1.5f, 0.5f, 50), m, 1e-4));
}

TEST(Matrix, CubeFacesLookAlongTheirRows) {
    const cVec3 eye(1, 2, 3);
    const cVec3 axes[] = {cVec3::AxisX, cVec3::AxisNegX, cVec3::AxisY, cVec3::AxisNegY, cVec3::AxisZ, cVec3::AxisNegZ};
    // Where the texture's t axis points on each face: down but for the faces above and below.
    const cVec3 ups[] = {cVec3::AxisNegY, cVec3::AxisNegY, cVec3::AxisZ,
                         cVec3::AxisNegZ, cVec3::AxisNegY, cVec3::AxisNegY};
    for (int face = 0; face < 6; face++) {
        SCOPED_TRACE(face);
        for (const bool gl : {true, false}) { // the other convention looks the opposite way
            const cMat4 m = cMat4::CubeViewProjection(eye, face, 100, gl);
            const cVec3 axis = gl ? axes[face] : -axes[face];
            EXPECT_TRUE(Near(Project(eye + axis * 0.01f, m), cVec3(0, 0, -1), 1e-3));
            EXPECT_TRUE(Near(Project(eye + axis * 100.0f, m), cVec3(0, 0, 1), 1e-3));
            EXPECT_NEAR(Project(eye + axis + ups[face], m).y, 1, 1e-4);
        }
    }
}

} // namespace
} // namespace trellis
