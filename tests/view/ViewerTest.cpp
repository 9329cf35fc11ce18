#include "editor/cSettings.h"
#include "tests/math/Near.h"
#include "view/cViewer.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

using namespace trellis;

namespace {

struct Lens {
    const char* Name;
    bool IsOrtho, IsInfinite;
};
constexpr Lens s_Lenses[] = {{"perspective", false, false}, {"infinite", false, true}, {"parallel", true, false}};

cViewer RandomViewer(const Lens& lens, std::mt19937& random) {
    std::uniform_real_distribution<float> unit(-1, 1);
    cViewer v;
    v.Position = cVec3(unit(random), unit(random), unit(random)) * 20;
    v.Orient = cAngles(unit(random) * 80, unit(random) * 180, unit(random) * 180).ToQuat();
    v.Viewport = cRect(30, 50, 30 + 500 + unit(random) * 300, 50 + 400 + unit(random) * 300);
    v.IsOrtho = lens.IsOrtho;
    v.IsInfinite = lens.IsInfinite;
    v.OrthoScale = 25 + unit(random) * 20;
    v.OrthoDepth = 100;
    v.Update(false);
    return v;
}

/// Where a point comes out, worked out from the definitions in doubles.
std::array<double, 2> Reference(const cViewer& v, const cVec3& p) {
    const cMat3 axes = v.Orient.ToMat3();
    double eye[3];
    for (int i = 0; i < 3; i++) {
        eye[i] = 0;
        for (int k = 0; k < 3; k++) {
            eye[i] += (double(p[k]) - double(v.Position[k])) * double(axes(i, k));
        }
    }
    const double width = v.Viewport.Width(), height = v.Viewport.Height();
    if (v.IsOrtho) {
        return {eye[0] * double(v.OrthoScale) * 2 / width, eye[1] * double(v.OrthoScale) * 2 / height};
    }
    const double t = std::tan(double(v.FovY) * M_PI / 360);
    return {eye[0] / (-eye[2] * t * width / height), eye[1] / (-eye[2] * t)};
}

} // namespace

TEST(Viewer, Defaults) {
    const cViewer v;
    EXPECT_EQ(v.FovY, 67.5f);
    EXPECT_EQ(v.ZNear, 0.1f);
    EXPECT_EQ(v.ZFar, 2000);
    EXPECT_EQ(v.OrthoDepth, 5000);
    EXPECT_EQ(v.OrthoScale, 1);
    EXPECT_EQ(v.Viewport, cRect(0, 0, 640, 480));
    EXPECT_EQ(v.Forward, cVec3::AxisNegZ);
    EXPECT_EQ(v.Right, cVec3::AxisX);
    EXPECT_EQ(v.Up, cVec3::AxisY);
    EXPECT_FLOAT_EQ(v.GetAspect(), 640.0f / 480);
    EXPECT_EQ(v.View, cMat4::Identity);

    cViewer::CtorArgs args;
    args.Position = cVec3(1, 2, 3);
    args.Angles = cAngles(0, 90, 0);
    args.FovY = 50;
    const cViewer other(args);
    ExpectNear(other.Forward, cVec3::AxisNegX, 1e-6f);
    ExpectNear(other.Position * other.View, cVec3::Zero, 1e-6f);
    EXPECT_EQ(other.FovY, 50);
}

TEST(Viewer, PointToScreenAndBackAlongTheRay) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> unit(-1, 1);
    for (const Lens& lens : s_Lenses) {
        SCOPED_TRACE(lens.Name);
        for (int i = 0; i < 200; i++) {
            const cViewer v = RandomViewer(lens, random);
            const cVec3 p = v.Position + v.Forward * (11 + unit(random) * 10) + v.Right * unit(random) * 5 +
                            v.Up * unit(random) * 5;
            const cVec4 clip = cVec4(p.x, p.y, p.z, 1) * v.ViewProjection;
            const cVec2 at(clip.x / clip.w, clip.y / clip.w);
            const auto expected = Reference(v, p);
            EXPECT_NEAR(at.x, expected[0], 2e-4 * (1 + std::fabs(expected[0])));
            EXPECT_NEAR(at.y, expected[1], 2e-4 * (1 + std::fabs(expected[1])));
            EXPECT_EQ(v.CullPoint(p), std::fabs(at.x) > 1 || std::fabs(at.y) > 1);

            const cSeg ray = v.GetPickRay(at);
            const float distance = cSeg::Distance(cSeg::Line, ray, p);
            EXPECT_LT(distance, 0.02f);
            EXPECT_GT(cVec3::Dot(p - ray.start, ray.direction), 0) << "it starts in front of all that is seen";
        }
    }
}

TEST(Viewer, PlanesAndVolume) {
    std::mt19937 random(8);
    for (const Lens& lens : s_Lenses) {
        SCOPED_TRACE(lens.Name);
        const cViewer v = RandomViewer(lens, random);
        const float zNear = v.IsOrtho ? -v.OrthoDepth : v.ZNear;
        EXPECT_TRUE(v.CullPoint(v.Position + v.Forward * (zNear - 0.05f)));
        EXPECT_FALSE(v.CullPoint(v.Position + v.Forward * (zNear + 0.05f)));
        const float zFar = v.IsOrtho ? v.OrthoDepth : v.ZFar;
        EXPECT_FALSE(v.CullPoint(v.Position + v.Forward * (zFar * 0.99f)));
        EXPECT_EQ(v.CullPoint(v.Position + v.Forward * (zFar * 1.01f)), !v.IsInfinite);

        cFrustum f;
        v.CalcFrustum(&f, 2, 9);
        const float halfHeight =
            v.IsOrtho ? v.Viewport.Height() / v.OrthoScale / 2 : 2 * std::tan(v.FovY * float(M_PI) / 360);
        ExpectNear(f.corners[3], v.Position + v.Forward * 2 + v.Up * halfHeight - v.Right * halfHeight * v.GetAspect(),
                   0.02f);
        EXPECT_NEAR(cVec3::Dot(f.corners[6] - v.Position, v.Forward), 9, 0.05f);
        EXPECT_FALSE(f.CullPoint(v.Position + v.Forward * 5));
        EXPECT_TRUE(f.CullPoint(v.Position + v.Forward * 1.9f));
        EXPECT_TRUE(f.CullPoint(v.Position + v.Forward * 9.2f));
        v.CalcFrustum(&f, 9);
        EXPECT_FALSE(f.CullPoint(v.Position + v.Forward * (zNear + 0.1f)));
        EXPECT_TRUE(f.CullPoint(v.Position + v.Forward * (zNear - 0.1f)));
    }
}

TEST(Viewer, ShiftAndTurn) {
    cViewer v;
    v.SetDXY(3, -2);
    v.Update(true);
    const cVec4 clip = cVec4(0, 0, -5, 1) * v.ViewProjection;
    EXPECT_FLOAT_EQ(clip.x / clip.w * v.HalfSize.x, 1.5f); // half pixels
    EXPECT_FLOAT_EQ(clip.y / clip.w * v.HalfSize.y, -1);

    v.SetDXY(0, 0);
    constexpr struct {
        bool OnTheRight, OnTheLeft, ForRender;
        cVec2 RightOfTheEye; ///< Where a point on the right comes out.
    } s_Rows[] = {
        {false, false, true, {1, 0}}, {true, false, true, {0, -1}}, {false, true, true, {0, 1}},
        {true, true, true, {0, -1}},  {true, false, false, {1, 0}},
    };
    for (const auto& row : s_Rows) {
        g_Settings.HomeButtonOnTheRight = row.OnTheRight;
        g_Settings.HomeButtonOnTheLeft = row.OnTheLeft;
        v.Aspect = 1;
        v.FovY = 90;
        v.Update(row.ForRender);
        const cVec4 p = cVec4(2, 0, -2, 1) * v.ViewProjection;
        EXPECT_NEAR(p.x / p.w, row.RightOfTheEye.x, 1e-5f);
        EXPECT_NEAR(p.y / p.w, row.RightOfTheEye.y, 1e-5f);
    }
    g_Settings.HomeButtonOnTheRight = g_Settings.HomeButtonOnTheLeft = false;
}

TEST(Viewer, StatesComeBackAsTheyWereUpdated) {
    cViewer v;
    v.PopState();
    g_Settings.HomeButtonOnTheLeft = true;
    v.FovY = 30;
    v.Update(true);
    const cMat4 projection = v.Projection;
    v.PushState();
    v.FovY = 60;
    v.IsOrtho = true;
    v.Viewport = cRect(0, 0, 8, 8);
    v.Update(false);
    v.PopState();
    g_Settings.HomeButtonOnTheRight = g_Settings.HomeButtonOnTheLeft = false;
    EXPECT_EQ(v.FovY, 30);
    EXPECT_EQ(v.Projection, projection);
    EXPECT_EQ(v.Viewport, cRect(0, 0, 640, 480));
    EXPECT_TRUE(v.States.IsEmpty());
}

TEST(Viewer, LookAtPastTheState) {
    cViewer v;
    v.IsOrtho = true;
    v.Update(false);
    v.SetLookAtViewProjection(cVec3(5, 1, 0), cVec3(0, 1, 0), 90, 1, 1, 100);
    EXPECT_EQ(v.ViewProjection, cMat4::LookAtViewProjection(cVec3(5, 1, 0), cVec3(0, 1, 0), 90, 1, 1, 100));
    const cVec4 p = cVec4(0, 1, 0, 1) * v.View * v.Projection;
    EXPECT_NEAR(p.x / p.w, 0, 1e-6f);
    EXPECT_TRUE(v.CullPoint(cVec3(6, 1, 0)));
    EXPECT_FALSE(v.CullPoint(cVec3(3.9f, 1, 0))) << "just behind the near plane";
    EXPECT_LT(v.GetPickRay(cVec2(0, 0)).direction.x, 0);
    EXPECT_FALSE(v.CullPoint(cVec3(-1, 1, 2)));
    EXPECT_EQ(v.Position, cVec3::Zero);
}

TEST(Viewer, ViewportOfNothing) {
    for (const cRect& viewport : {cRect(5, 5, 5, 5), cRect(0, 0, 100, 0), cRect::Empty}) {
        for (bool ortho : {false, true}) {
            cViewer v;
            v.Viewport = viewport;
            v.IsOrtho = ortho;
            v.Update(true);
            for (const cMat4& m : {v.ViewProjection, v.ViewProjectionInverse, v.Screen, v.ScreenInverse}) {
                for (float f : m.m) {
                    EXPECT_TRUE(std::isfinite(f));
                }
            }
        }
    }
}

TEST(Viewer, PixelsToClip) {
    cViewer v;
    v.Viewport = cRect(100, 50, 300, 150);
    v.Update(false);
    EXPECT_EQ(v.ScreenToClip(cVec2(100, 150)), cVec2(-1, 1));
    EXPECT_EQ(v.ScreenToClip(cVec2(250, 100)), cVec2(0.5f, 0));
    ExpectNear(cVec3(150, 25, 0) * v.Screen, cVec3(0.5f, -0.5f, 0), 1e-6f); // points count from the viewport's corner
    ExpectNear(cVec3(0.5f, -0.5f, 0) * v.ScreenInverse, cVec3(150, 25, 0), 1e-4f);
}
