#include "view/cFreeViewer.h"

#include "tests/math/Near.h"
#include "tests/view/FakeInput.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace trellis;

namespace {

using View = cFreeViewer::OrthoView;

class FreeViewer : public FakeInput {
protected:
    FreeViewer() {
        Frame();
        cWidgets::AddWidget(V, 2);
    }

    void Move(float dx, float dy) {
        s_Mouse.Position += cVec2(dx, dy);
        Frame();
    }
    void Wheel(int notches) {
        s_Mouse.Wheel = notches;
        Frame();
    }

    cFreeViewer* V = new cFreeViewer;
};

} // namespace

TEST_F(FreeViewer, StartsAtHome) {
    EXPECT_EQ(V->Distance, 20);
    EXPECT_EQ(V->OrthoScaleTarget, 20);
    EXPECT_EQ(V->HomeAngles, cAngles(-28, 45, 0));
    EXPECT_EQ(V->FovY, 67.5f);
    EXPECT_EQ(V->ZFar, 2000);
    EXPECT_LT(V->Forward.y, 0); // from above
    ExpectNear(V->Position, V->Forward * -20);

    V->Center = {1, 2, 3};
    V->IsOrthoView = V->HasOverrideCenter = true;
    V->CenterOffset = {4, 5};
    V->Distance = V->OrthoScaleTarget = 7;
    V->HomeCenter = {0, 1, 0};
    Set(cInput::Home, true);
    EXPECT_FALSE(V->IsOrthoView || V->HasOverrideCenter);
    EXPECT_EQ(V->CenterOffset, cVec2(0, 0));
    EXPECT_EQ(V->OrthoScaleTarget, 20);
    ExpectNear(V->Position, V->Forward * -20 + cVec3(0, 1, 0));
}

TEST_F(FreeViewer, StandardViews) {
    constexpr cVec3 x = cVec3::AxisX, y = cVec3::AxisY, z = cVec3::AxisZ;
    const struct {
        View::Enum Value;
        int Key;
        cVec3 Forward, Right, Up;
    } rows[] = {
        {View::Right, cInput::NumPad6, -x, -z, y}, {View::Top, cInput::NumPad7, -y, z, x},
        {View::Front, cInput::NumPad2, -z, x, y},  {View::Left, cInput::NumPad4, x, z, y},
        {View::Bottom, cInput::NumPad1, y, z, -x}, {View::Back, cInput::NumPad8, z, -x, y},
        {View::TopUpright, -1, -y, x, -z},         {View::BottomUpright, -1, y, x, z},
    };
    for (int value = 1; const auto& row : rows) {
        SCOPED_TRACE(value);
        EXPECT_EQ(row.Value, value++);
        V->Home();
        V->CenterOffset = {1, 1};
        row.Key == -1 ? V->SetView(row.Value) : Set(row.Key, true);
        Set(cInput::Esc, false);
        ExpectNear(V->Forward, row.Forward);
        ExpectNear(V->Right, row.Right);
        ExpectNear(V->Up, row.Up);
        EXPECT_EQ(V->CenterOffset, cVec2(0, 0));
        EXPECT_FALSE(V->IsOrtho);

        V->Roll({30, 0}); // 9 degrees
        V->Tumble({20, 20});
        V->SnapAxis();
        ExpectNear(V->Forward, row.Forward);
        ExpectNear(V->Up, row.Up);
    }
    V->Home();
    const cQuat home = V->Orient;
    V->OrthoScaleTarget = 3;
    V->SetOrthoProj(View::Keep);
    EXPECT_EQ(V->Orient, home);
    EXPECT_TRUE(V->IsOrtho);
    EXPECT_EQ(V->OrthoScale, 20);
    ExpectNear(V->Position, V->Center); // an eye of parallel rays stands at the pivot
    V->SetPerspProj();
    EXPECT_FALSE(V->IsOrtho);
    ExpectNear(V->Position, V->Forward * -20);
    for (int i = 0; i < 2; i++) { // never off again by this key
        Set(cInput::NumPad5, true);
        Set(cInput::NumPad5, false);
        EXPECT_TRUE(V->IsOrtho);
    }
}

TEST_F(FreeViewer, ButtonsWithAlt) {
    using I = cInput;
    const struct {
        const char* Name;
        int First, Second; // buttons, -1: none
        std::function<void(cFreeViewer*)> Motion;
    } rows[] = {
        {"tumble", I::LeftButton, -1,
         [](cFreeViewer* v) {
             v->Tumble({10, 4});
         }},
        {"tumble, then track", I::LeftButton, I::RightButton,
         [](cFreeViewer* v) {
             v->Track({10, 4});
         }},
        {"tumble, then roll", I::LeftButton, I::MiddleButton,
         [](cFreeViewer* v) {
             v->Roll({10, 4});
         }},
        {"dolly", I::RightButton, -1,
         [](cFreeViewer* v) {
             v->Dolly({10, 4});
         }},
        {"dolly, then track", I::RightButton, I::LeftButton,
         [](cFreeViewer* v) {
             v->Track({10, 4});
         }},
        {"dolly, then roll", I::RightButton, I::MiddleButton,
         [](cFreeViewer* v) {
             v->Roll({10, 4});
         }},
        {"track", I::MiddleButton, -1,
         [](cFreeViewer* v) {
             v->Track({10, 4});
         }},
        {"track goes on", I::MiddleButton, I::LeftButton,
         [](cFreeViewer* v) {
             v->Track({10, 4});
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        V->Home();
        cFreeViewer expected;
        row.Motion(&expected);

        Set(row.First, true); // nothing without Alt
        Move(10, 4);
        EXPECT_FALSE(cWidgets::IsCaptured());
        EXPECT_EQ(V->Mode, 0);
        Set(row.First, false);

        Set(I::Alt, true);
        Set(row.First, true);
        EXPECT_TRUE(cWidgets::IsCaptured(V));
        if (row.Second != -1) {
            Set(row.Second, true);
        }
        Move(10, 4);
        ExpectNear(V->Position, expected.Position);
        ExpectNear(V->Forward, expected.Forward);
        ExpectNear(V->Up, expected.Up);
        if (row.Second != -1) {
            Set(row.Second, false);
            EXPECT_NE(V->Mode, cFreeViewer::HeldByAlt);
        }
        Set(row.First, false);
        EXPECT_EQ(V->Mode, cFreeViewer::HeldByAlt);
        EXPECT_TRUE(cWidgets::IsCaptured(V));
        Set(I::Alt, false);
        EXPECT_EQ(V->Mode, cFreeViewer::NoMode);
        EXPECT_FALSE(cWidgets::IsCaptured());

        Set(I::Alt, true); // Alt up first
        Set(row.First, true);
        Set(I::Alt, false);
        EXPECT_TRUE(cWidgets::IsCaptured(V));
        Set(row.First, false);
        EXPECT_FALSE(cWidgets::IsCaptured());
    }
    Set(I::Alt, true);
    auto* beside = new cFreeViewer;
    beside->Viewport = {5000, 0, 6000, 480};
    cWidgets::AddWidget(beside, 2);
    Set(I::LeftButton, true);
    EXPECT_TRUE(cWidgets::IsCaptured(V)) << "the one under the mouse";
    auto cursor = I::Cursor::Default;
    EXPECT_TRUE(V->OnSetCursor(&cursor));
    cWidgets::ReleaseCapture();
    EXPECT_FALSE(V->OnSetCursor(&cursor));
    Set(I::LeftButton, false);
    Set(I::Alt, false);
    cWidgets::FreeWidget(beside, false);
    V->KeysEnabled = false;
    Set(I::NumPad2, true);
    Set(I::NumPad2, false);
    EXPECT_LT(V->Forward.y, -0.1f);
    V->Enabled = false;
    Set(I::Alt, true);
    Set(I::LeftButton, true);
    Set(I::NumPad2, true);
    EXPECT_FALSE(cWidgets::IsCaptured());
    EXPECT_LT(V->Forward.y, -0.1f);
}

TEST_F(FreeViewer, WheelMovesThePivot) {
    const cVec3 eye = V->Position;
    Wheel(2);
    EXPECT_EQ(V->Distance, 20);
    Set(cInput::Alt, true);
    const struct {
        int Notches;
        float Distance;
    } rows[] = {{2, 22.4f}, {-1, 21.2f}, {-100, 0}, {1, 1.2f}};
    for (const auto& row : rows) {
        Wheel(row.Notches);
        EXPECT_NEAR(V->Distance, row.Distance, 1e-4f);
        ExpectNear(V->Position, eye);
        ExpectNear(V->Center, eye + V->Forward * V->Distance);
        EXPECT_TRUE(V->ChangedByWheel && V->Mode == cFreeViewer::HeldByAlt);
    }
    V->HasOverrideCenter = true;
    Wheel(3);
    V->HasOverrideCenter = false;
    V->IsOrthoView = true;
    Wheel(3);
    EXPECT_NEAR(V->Distance, 1.2f, 1e-4f);
    Set(cInput::Alt, false);
    EXPECT_FALSE(cWidgets::IsCaptured());
}

TEST_F(FreeViewer, Motions) {
    V->SetView(View::Front);
    V->Track({100, 50}); // 0.001 x (20 + 10)
    ExpectNear(V->Center, {-3, -1.5f, 0});
    V->Distance = 0;
    V->Track({-100, -50});
    ExpectNear(V->Center, {-2, -1, 0});
    V->SetOrthoProj(View::Front);
    V->Track({-40, -20}); // 20 pixels a unit
    ExpectNear(V->Center, {0, 0, 0});

    V->Dolly({100, 50}); // 50 x 0.002 x 20
    EXPECT_NEAR(V->OrthoScaleTarget, 22, 1e-4f);
    V->Dolly({1e6f, 0});
    EXPECT_EQ(V->OrthoScale, 1000);

    V->Home();
    V->SetView(View::Front);
    V->Dolly({30, 10});
    EXPECT_NEAR(V->Distance, 16, 1e-4f);
    V->Dolly({100, 0}); // past the pivot by 4
    EXPECT_EQ(V->Distance, 0);
    ExpectNear(V->Position, {0, 0, -4});
    ExpectNear(V->Center, {0, 0, -4});

    V->Home();
    V->SetView(View::Front);
    V->Tumble({100, 0}); // 30 degrees about the world's Y
    ExpectNear(V->Forward, {0.5f, 0, -std::sqrt(0.75f)});
    ExpectNear(V->Up, cVec3::AxisY);
    V->SetView(View::Front);
    V->Tumble({0, 100}); // up about its own right
    ExpectNear(V->Forward, {0, 0.5f, -std::sqrt(0.75f)});
    V->Tumble({200, 0});
    EXPECT_NEAR(V->Forward.y, 0.5f, 1e-4f);
    EXPECT_NEAR(V->Right.y, 0, 1e-4f); // the horizon stays level
    V->SetView(View::Front);
    V->Roll({60, 40});
    ExpectNear(V->Forward, -cVec3::AxisZ);
    EXPECT_NEAR(V->Up.x, -0.5f, 1e-4f);
    V->SetView(View::Front);
    V->ScreenRoll({60, 40});
    ExpectNear(V->Forward, -cVec3::AxisZ);
    EXPECT_NEAR(V->Up.x, 0.5f, 1e-4f);
    const cVec3 right = V->Right, up = V->Up;
    V->ScreenTumble({100, 0}); // about its own up
    ExpectNear(V->Up, up);
    ExpectNear(V->Forward, right * 0.5f - cVec3::AxisZ * std::sqrt(0.75f));
    V->SetView(View::Front);
    V->ScreenTumble({0, 100});
    ExpectNear(V->Forward, {0, 0.5f, -std::sqrt(0.75f)});

    V->Home();
    V->PlaneTrack({100, 70}, cVec3::AxisY * 3);
    EXPECT_NEAR(V->Center.y, 0, 1e-4f);
    ExpectNear(V->Center,
               V->Right * -3 - (V->Up - cVec3::AxisY * V->Up.y) * 2.1f); // the way up as it lies on the plane
}

TEST_F(FreeViewer, PivotsOfTheUser) {
    const cVec3 eye = V->Position, forward = V->Forward;
    V->OverrideCenter({3, -2, 1});
    ExpectNear(V->Position, eye);
    ExpectNear(V->Forward, forward);
    ExpectNear(V->Center, {3, -2, 1});
    const cVec2 offset = V->CenterOffset;
    V->Track({10, 20});
    ExpectNear(V->Center, {3, -2, 1});
    EXPECT_NEAR(V->CenterOffset.x, offset.x - 0.01f * (std::fabs(V->Distance) + 10), 1e-4f);
    V->Dolly({1000, 0});
    EXPECT_LT(V->Distance, 0); // it flies through

    V->Home();
    V->Aim(5);
    ExpectNear(V->Position, eye);
    EXPECT_EQ(V->Distance, 5);
    V->LookAt({0, 3, 10}, {0, 3, 2});
    ExpectNear(V->Position, {0, 3, 10});
    ExpectNear(V->Forward, -cVec3::AxisZ);
    EXPECT_EQ(V->Distance, 8);
    V->SetOrthoProj(View::Front);
    V->OverrideCenter({4, 5, 6});
    EXPECT_EQ(V->Distance, 8);
    ExpectNear(V->Position, {0, 3, 6}, 1e-3f);
    V->SetPerspProj();
    V->LookAt({0, 3, 10}, {0, 3, 2});
    V->LookAt({1, 1, 1}, {1, 1, 1}); // no direction: the former one
    ExpectNear(V->Forward, -cVec3::AxisZ);
    V->LookAt({0, 9, 0}, cVec3::Zero); // straight down
    ExpectNear(V->Forward, -cVec3::AxisY);
    EXPECT_TRUE(std::isfinite(V->Position.Length()));

    V->LookAt({0, 0, 10}, cVec3::Zero);
    V->Transform(cMat4::RotationY(90) * cMat4::Translation(5, 0, 0));
    ExpectNear(V->Center, {5, 0, 0});
    ExpectNear(V->Position, cVec3(0, 0, 10) * cMat4::RotationY(90) + cVec3(5, 0, 0));
}

// A framed box touches the area's edges with the tighter pair of its sides, and stays inside with the others.
TEST_F(FreeViewer, FramesABox) {
    const cRect area(100, 60, 500, 400);
    for (const bool isOrtho : {false, true}) {
        for (const cMat4& transform :
             {cMat4(cMat4::Identity), cMat4::Scaling(3, 1, 0.2f) * cMat4::Translation(40, -7, 3)}) {
            V->Home();
            V->IsOrthoView = isOrtho;
            V->Viewport = {0, 0, 700, 500}; // since the last update
            V->Frame(cBounds({-1, -2, -3}, {4, 5, 6}), transform, area);
            ExpectNear(V->Center, cVec3(1.5f, 1.5f, 1.5f) * transform, 1e-3f);
            EXPECT_TRUE(V->HasOverrideCenter);
            const cVec3 eye = V->Position;
            V->Viewport = {5, 5, 5, 5};
            V->Frame(cBounds({-1, -2, -3}, {4, 5, 6}), transform, cRect::Empty);
            EXPECT_EQ(V->Position, eye);
            V->Viewport = {0, 0, 700, 500};
            V->Update();
            cVec3 corners[8];
            cBounds({-1, -2, -3}, {4, 5, 6}).ToPoints(corners);
            float gaps[4] = {1e9f, 1e9f, 1e9f, 1e9f};
            for (const cVec3& corner : corners) {
                cVec2 p;
                EXPECT_TRUE(V->WorldToClosestScreenPoint(corner * transform, &p));
                const float gap[4] = {p.x - area.x0, p.y - area.y0, area.x1 - p.x, area.y1 - p.y};
                for (int i = 0; i < 4; i++) {
                    gaps[i] = std::min(gaps[i], gap[i]);
                }
            }
            for (const float gap : gaps) {
                EXPECT_GT(gap, -0.1f);
            }
            EXPECT_LT(std::min(std::max(gaps[0], gaps[2]), std::max(gaps[1], gaps[3])), 0.1f);
        }
    }
    const cVec3 eye = V->Position;
    V->Frame(cBounds::Empty, cMat4::Identity, area);
    EXPECT_EQ(V->Position, eye);
    V->SetPerspProj();
    V->Frame(cBounds(cVec3::One, cVec3::One), cMat4::Identity, cRect::Empty); // a point: as near as can be
    EXPECT_NEAR(V->Distance, V->ZNear, 1e-4f);
}

TEST_F(FreeViewer, Gestures) {
    cFreeViewer expected;
    const auto same = [&](const char* name) {
        SCOPED_TRACE(name);
        ExpectNear(V->Position, expected.Position);
        ExpectNear(V->Up, expected.Up);
    };
    V->OnGestureDown(cGestureType::Pan, {0, 0});
    V->OnGestureMove({5, 5}, {10, 4}, 1, 0);
    V->OnGestureUp();
    V->OnGestureMove({5, 5}, {10, 4}, 1, 0); // nothing any more
    expected.Track({10, 4});
    same("pan");
    V->HandleGesture(cGestureType::Pinch, {0, 0}, {0, 0}, 2, 0);
    EXPECT_EQ(V->Distance, 10);
    V->HandleGesture(cGestureType::Pinch, {0, 0}, {0, 0}, 0, 0);
    EXPECT_EQ(V->Distance, 10);
    V->Distance = 0;
    V->HandleGesture(cGestureType::Pinch, {0, 0}, {0, 0}, 2, 0);
    EXPECT_EQ(V->Distance, 0);
    V->HandleGesture(cGestureType::Pinch, {0, 0}, {0, 0}, 0.5f, 0);
    EXPECT_EQ(V->Distance, 2 * V->ZNear) << "out of the pivot itself";
    V->HandleGesture(cGestureType::Swipe, {0, 0}, {10, 4}, 1, 0);
    V->Distance = 20;
    V->Update();
    expected.Tumble({10, 4});
    same("swipe");
    V->HandleGesture(cGestureType::Pinch, {0, 0}, {0, 0}, 1e-40f, 0);
    EXPECT_TRUE(std::isfinite(V->Distance));
    V->SetOrthoProj(View::Front);
    V->OrthoScaleTarget = 0;
    V->Track({1, 1});
    EXPECT_TRUE(std::isfinite(V->Center.x));
    V->Home();
    expected.Home();
    V->HandleGesture(cGestureType::Rotate, {0, 0}, {0, 0}, 1, 30);
    expected.ScreenRoll({100, 0});
    same("rotate");
}

TEST(Orientations, FromADirection) {
    for (const cVec3& dir :
         {cVec3(0, 0, -2), cVec3(3, 1, 2), cVec3(0, 5, 0), cVec3(0, -1, 0), cVec3(1e-25f, 0, 0), cVec3(0, 0, 1e25f)}) {
        cQuat q;
        cViewer_CalcOrientFromForwardDir(&q, dir);
        cVec3 forward, right, up;
        q.ToMat3().ToVectors(&forward, &right, &up);
        const float most = std::max({std::fabs(dir.x), std::fabs(dir.y), std::fabs(dir.z)});
        ExpectNear(forward, cVec3::Normalize(dir / most));
        EXPECT_NEAR(right.y, 0, 1e-5f);
        EXPECT_GE(up.y, -1e-5f);
    }
}

TEST(Viewer, ClosestScreenPoints) {
    cViewer v; // at the origin, along -Z
    cVec2 p;
    EXPECT_TRUE(v.WorldToClosestScreenPoint({0, 0, -5}, &p));
    EXPECT_NEAR(p.x, 320, 1e-3f);
    EXPECT_NEAR(p.y, 240, 1e-3f);
    EXPECT_FALSE(v.WorldToClosestScreenPoint({1, 2, 5}, &p)); // behind: still to the right, and up
    EXPECT_GT(p.x, 640);
    EXPECT_GT(p.y, 480);
    EXPECT_FALSE(v.WorldToClosestScreenPoint({-1, 0, 0}, &p));
    EXPECT_LT(p.x, 0);
    v.IsOrtho = true;
    v.Update(false);
    EXPECT_TRUE(v.WorldToClosestScreenPoint({1, 2, 5}, &p));
    EXPECT_NEAR(p.x, 321, 1e-3f);
}
