// Drags by mouse positions that are worked out from the projection of the wanted point of the world.
#include "render/cRender.h"
#include "tests/math/Near.h"
#include "tests/render/RecordingDevice.h"
#include "tests/view/FakeInput.h"
#include "view/cMoveTool.h"
#include "view/cPosition.h"
#include "view/cRotateTool.h"
#include "view/cScaleTool.h"
#include "view/cTransform.h"
#include "view/cViewer.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace trellis;

namespace {

using Mode = cManipulator::Mode;

class Manipulators : public FakeInput {
protected:
    Manipulators() {
        Device.Quiet = true;
        Viewer.Viewport = {0, 0, 1000, 800};
        LookFrom({6, 5, 12});
        cRender::SetViewer(&Viewer);
        g_ManipulatorsType = cManipulator::None;
        g_ManipulatorsLocal = cSpace::World;
        g_ManipulatorsSnap = 0;
    }
    ~Manipulators() override {
        cWidgets::ReleaseCapture();
        cWidgets::FreeAll(); // before the viewer goes
        cRender::SetViewer(nullptr);
        RecordingDevice::Uninstall();
        g_ManipulatorsSnap = 0;
    }

    void LookFrom(const cVec3& eye) {
        Viewer.Position = eye;
        cViewer_CalcOrientFromForwardDir(&Viewer.Orient, -eye);
        Viewer.Update(false);
    }
    void MoveTo(const cVec3& world) {
        EXPECT_TRUE(Viewer.WorldToClosestScreenPoint(world, &s_Mouse.Position));
        Frame();
    }
    template <class T> T* Add(T* tool) {
        cWidgets::AddWidget(tool, cManipulator::Layer);
        EXPECT_TRUE(tool->CalcFrame());
        return tool;
    }
    /// Presses on a point, goes to another in steps, and lets go.
    void Drag(const cVec3& from, const cVec3& to, int steps = 5) {
        MoveTo(from);
        Set(cInput::LeftButton, true);
        for (int i = 1; i <= steps; i++) {
            MoveTo(from + (to - from) * (float(i) / float(steps)));
        }
        Set(cInput::LeftButton, false);
    }

    RecordingDevice& Device = RecordingDevice::Install();
    cViewer Viewer;
    cVec3 Pos{1, 0.5f, -1};
    cAngles Angles{20, 40, 60};
    cVec3 Scale{1, 2, 3};
};

} // namespace

TEST_F(Manipulators, AxesGoWhereTheyAreDragged) {
    const cMat4 parent = cMat4::Scaling(2, 1, 1) * cMat4::RotationY(30) * cMat4::Translation(0.5f, 0, 1);
    for (const bool isOrtho : {false, true}) {
        Viewer.IsOrtho = isOrtho;
        Viewer.OrthoScale = 60;
        Viewer.Update(false);
        for (const cSpace::Enum space : {cSpace::World, cSpace::Local}) {
            for (const bool hasParent : {false, true}) {
                for (int axis = 0; axis < 3; axis++) {
                    SCOPED_TRACE(testing::Message() << isOrtho << space << hasParent << axis);
                    Pos = {1, 0.5f, -1};
                    auto* tool = Add(new cMoveTool(&Angles, &Pos, space));
                    tool->SetParent(hasParent ? parent : cMat4::Identity);
                    ASSERT_TRUE(tool->CalcFrame());
                    const cVec3 direction = tool->Axes[axis].direction, center = tool->Center;
                    const cVec3 from = tool->Axes[axis].GetPoint(0.7f),
                                by = direction * (2.5f * tool->Axes[axis].length);
                    Drag(from, from + by);
                    const cVec4 moved = cVec4(Pos.x, Pos.y, Pos.z, 1) * tool->Parent;
                    ExpectNear(cVec3(moved.x, moved.y, moved.z), center + by, 5e-3f);
                    EXPECT_EQ(tool->CurMode, Mode::None);
                    EXPECT_FALSE(cWidgets::IsCaptured());
                    cWidgets::FreeWidget(tool, false);
                }
            }
        }
    }
}

TEST_F(Manipulators, ThePlaneOfTheScreen) {
    auto* tool = Add(new cMoveTool(&Pos));
    const cVec3 start = Pos, by = Viewer.Right * 2 + Viewer.Up * 1;
    const cVec3 aside = Viewer.Right * -0.5f * tool->Radius; // off the axes, which end here
    MoveTo(start - Viewer.Up * (tool->Radius * 0.9f));       // between the axes
    Set(cInput::LeftButton, true);
    ASSERT_EQ(tool->CurMode, Mode::Free);
    const cVec3 hit = tool->StartHit;
    ExpectNear(hit, hit - tool->Plane.normal * tool->Plane.SignedDistance(hit), 1e-3f);
    const cVec3 across = by - tool->Plane.normal * cVec3::Dot(by, tool->Plane.normal);
    MoveTo(hit + across);
    ExpectNear(Pos, start + across, 2e-3f);
    Set(cInput::LeftButton, false);

    tool->HasFreeInner = true; // now a ring
    MoveTo(Pos + aside);
    EXPECT_NE(tool->HotMode, Mode::Free);
    tool->CalcFrame();
    MoveTo(tool->Center - Viewer.Up * (1.5f * tool->Radius));
    EXPECT_EQ(tool->HotMode, Mode::Free);
}

TEST_F(Manipulators, SnapTheMovedComponents) {
    Pos = {0, 0.3f, 0.4f};
    g_ManipulatorsSnap = 0.5f;
    auto* tool = Add(new cMoveTool(&Pos));
    const cVec3 from = tool->Axes[0].GetPoint(0.7f);
    Drag(from, from + cVec3(0.74f, 0, 0));
    ExpectNear(Pos, {0.5f, 0.3f, 0.4f}, 1e-6f);

    LookFrom({0, 0, 10}); // the plane is across Z, which stays as it is, and cannot be grasped end-on
    Pos = {0, 0, 0.4f};
    tool->CalcFrame();
    MoveTo(Pos - (Viewer.Right + Viewer.Up) * 0.5f * tool->Radius);
    Set(cInput::LeftButton, true);
    ASSERT_EQ(tool->CurMode, Mode::Free);
    Viewer.WorldToClosestScreenPoint(tool->StartHit + cVec3(0.8f, -1.3f, 0), &s_Mouse.Position);
    Frame();
    ExpectNear(Pos, {1, -1.5f, 0.4f}, 1e-3f);
}

TEST_F(Manipulators, RingsTurnByTheAngleOfTheHand) {
    for (int axis = 0; axis < 3; axis++) {
        for (const float degrees : {35.0f, -50.0f}) {
            SCOPED_TRACE(testing::Message() << axis << " by " << degrees);
            Angles = {0, 0, 0};
            auto* tool = Add(new cRotateTool(&Angles, &Pos, cSpace::World));
            const cVec3 a = tool->Axes[axis].direction;
            // A point of the ring's front, and the same after the turn.
            const cVec3 toEye = tool->Plane.normal;
            const cVec3 from = cVec3::Normalize(toEye - a * cVec3::Dot(toEye, a));
            const cVec3 to = from * cMat3::Rotation(a, degrees);
            MoveTo(Pos + from * tool->Radius);
            EXPECT_EQ(tool->HotMode, Mode::X + axis);
            Set(cInput::LeftButton, true);
            MoveTo(Pos + to * tool->Radius);
            const cMat3 turned = Angles.ToQuat().ToMat3(), expected = cMat3::Rotation(a, degrees);
            for (int i = 0; i < 3; i++) {
                ExpectNear(cVec3(i == 0, i == 1, i == 2) * turned, cVec3(i == 0, i == 1, i == 2) * expected, 0.02f);
            }
            Set(cInput::LeftButton, false);
            cWidgets::FreeWidget(tool, false);
        }
    }
}

// Seen from its pole a ring is the sphere's outline.
TEST_F(Manipulators, RingsThatFaceTheEye) {
    for (const bool isOrtho : {false, true}) {
        for (const float mirror : {1.0f, -1.0f}) {
            SCOPED_TRACE(testing::Message() << isOrtho << mirror);
            LookFrom({0, 0, 10});
            Viewer.IsOrtho = isOrtho;
            Viewer.OrthoScale = 60;
            Viewer.Update(false);
            Angles = {0, 0, 0};
            Pos = cVec3::Zero;
            auto* tool = Add(new cRotateTool(&Angles, &Pos, cSpace::World));
            tool->SetParent(cMat4::Scaling(mirror, 1, 1));
            const auto at = [&](float degrees) {
                float s, c;
                cMath::SinCos(degrees, &s, &c);
                return cVec3(c, s, 0) * tool->Radius;
            };
            for (float degrees = 15; degrees < 360; degrees += 30) {
                MoveTo(at(degrees));
                EXPECT_EQ(tool->HotMode, Mode::Z) << degrees;
            }
            MoveTo(at(30));
            Set(cInput::LeftButton, true);
            MoveTo(at(120));
            EXPECT_NEAR(Angles.z, 90 * mirror, 0.5f);
            MoveTo(at(210));
            EXPECT_NEAR(std::fabs(Angles.z), 180, 0.5f);
            Set(cInput::LeftButton, false);
            cWidgets::FreeWidget(tool, false);
        }
    }
}

TEST_F(Manipulators, TheSphereTurnsFreely) {
    Angles = {10, 20, 30};
    auto* tool = Add(new cRotateTool(&Angles, &Pos, cSpace::World));
    const cVec3 from = cVec3::Normalize(tool->Plane.normal + Viewer.Right * 0.3f + Viewer.Up * 0.4f);
    MoveTo(Pos + from * tool->Radius);
    if (tool->HotMode != Mode::Free) {
        GTEST_FAIL() << "a ring is in the way: " << tool->HotMode;
    }
    Set(cInput::LeftButton, true);
    Frame();
    EXPECT_EQ(Angles, cAngles(10, 20, 30)); // nothing for no motion
    const cVec3 to = cVec3::Normalize(tool->Plane.normal - Viewer.Right * 0.2f + Viewer.Up * 0.1f);
    MoveTo(Pos + to * tool->Radius);
    const cQuat start = cAngles(10, 20, 30).ToQuat();
    const cQuat by = Angles.ToQuat() * cQuat::Invert(start);
    ExpectNear(cQuat::Rotate(from, by), to, 0.02f); // what was under the hand still is
    const cAngles turned = Angles;
    MoveTo(Pos + from * tool->Radius); // back
    EXPECT_EQ(Angles, cAngles(10, 20, 30));
    MoveTo(Pos + to * tool->Radius);
    EXPECT_EQ(Angles, turned);
    g_ManipulatorsSnap = 15;
    MoveTo(Pos + (to + Viewer.Up * 0.01f) * tool->Radius);
    for (const float v : {Angles.x, Angles.y, Angles.z}) {
        EXPECT_EQ(std::fmod(v, 15.0f), 0);
    }
}

TEST_F(Manipulators, ScalesByTheDistance) {
    for (int axis = 0; axis < 3; axis++) {
        SCOPED_TRACE(axis);
        Scale = {1, 2, 3};
        auto* tool = Add(new cScaleTool(&Scale, &Angles, &Pos));
        const cVec3 from = tool->Axes[axis].GetPoint(0.6f), to = tool->Axes[axis].GetPoint(1.5f);
        Drag(from, to);
        for (int i = 0; i < 3; i++) {
            EXPECT_NEAR(Scale[i], float(i + 1) * (i == axis ? 2.5f : 1.0f), 0.02f);
        }
        Drag(from, tool->Axes[axis].GetPoint(-1)); // beyond the middle
        EXPECT_EQ(Scale[axis], 0.1f);
        cWidgets::FreeWidget(tool, false);
    }
    Scale = {1, 2, 0.01f};
    auto* tool = Add(new cScaleTool(&Scale, &Angles, &Pos));
    Drag(Pos, Pos + Viewer.Right * tool->Axes[0].length);
    ExpectNear(Scale, {2, 4, 0.1f}, 0.02f); // all by two; none below the least
    MoveTo(tool->Axes[1].GetPoint(0.01f));  // too near to the centre to tell a ratio
    tool->ContinueMode(Mode::Y);
    EXPECT_EQ(tool->CurMode, Mode::None);
    g_ManipulatorsSnap = 0.5f;
    Scale = {1, 2, 3};
    Drag(tool->Axes[1].GetPoint(0.6f), tool->Axes[1].GetPoint(0.97f));
    EXPECT_EQ(Scale, cVec3(1, 3, 3));
}

TEST_F(Manipulators, WhereNoRayTellsTheValueStays) {
    LookFrom({0, 1, 10});
    Viewer.Orient = cQuat::Identity; // along -Z
    Viewer.Update(false);
    Pos = cVec3::Zero;
    auto* tool = Add(new cMoveTool(&Pos));
    MoveTo(tool->Axes[2].GetPoint(0.9f));
    Set(cInput::LeftButton, true);
    ASSERT_EQ(tool->CurMode, Mode::Z);
    float last = 0;
    for (const float y : {380.0f, 395.0f, 399.0f, 400.0f, 400.5f, 420.0f, 700.0f}) { // the axis vanishes at 400
        s_Mouse.Position.y = y;
        Frame();
        EXPECT_LE(Pos.z, last) << y;
        last = Pos.z;
    }
    EXPECT_LT(last, -100);
    Set(cInput::LeftButton, false);
    Pos = cVec3::Zero;
    LookFrom({12, 1, 0});

    const cVec3 before = Pos;
    const auto drag = [&] {
        Drag({0, 0.5f, 0}, {0, 3, 0.1f});
        EXPECT_EQ(Pos, before);
        EXPECT_FALSE(cWidgets::IsCaptured());
    };
    tool->SetParent(cMat4::Scaling(1, 0, 1)); // no way back into the parent's frame
    drag();
    tool->SetParent(cMat4::Identity);
    Viewer.Position = Pos; // the eye is in the handle
    Viewer.Update(false);
    EXPECT_FALSE(tool->CalcFrame());
    LookFrom({12, 1, 0});
    ASSERT_TRUE(tool->CalcFrame());
    MoveTo(tool->Axes[1].GetPoint(0.7f));
    EXPECT_TRUE(tool->IsHot(false));
    for (const cRect& viewport : {cRect(0, 0, 0, 0), cRect(900, 0, 1000, 50)}) { // a form that is folded, or elsewhere
        Viewer.Viewport = viewport;
        Viewer.Update(false);
        EXPECT_FALSE(tool->IsHot(false));
        EXPECT_FALSE(tool->OnButtonDown(cInput::LeftButton));
    }
    cRender::SetViewer(nullptr);
    EXPECT_FALSE(tool->CalcFrame());
    EXPECT_FALSE(tool->OnButtonDown(cInput::LeftButton));
    cWidgets::Render(-1);
}

TEST_F(Manipulators, TheMiddleButtonGoesOn) {
    auto* tool = Add(new cMoveTool(&Pos));
    cVec3 otherPos{-2, 0, 0};
    auto* other = Add(new cMoveTool(&otherPos));
    const cVec3 from = tool->Axes[1].GetPoint(0.7f);
    Drag(from, from + cVec3(0, 1, 0));
    EXPECT_EQ(g_RepeatManipulator.Tool, tool);
    EXPECT_EQ(g_RepeatManipulator.Mode, Mode::Y);
    const cVec3 start = Pos;
    MoveTo({4, -3, 0}); // anywhere
    EXPECT_FALSE(other->OnButtonDown(cInput::MiddleButton));
    EXPECT_EQ(tool->HotMode, Mode::None);
    Set(cInput::MiddleButton, true);
    EXPECT_TRUE(cWidgets::IsCaptured(tool));
    EXPECT_EQ(other->CurMode, Mode::None);
    const cVec3 hit = tool->StartHit;
    MoveTo(hit + cVec3(0, 0.8f, 0));
    ExpectNear(Pos, start + cVec3(0, 0.8f, 0), 2e-3f);
    Set(cInput::LeftButton, true);
    Set(cInput::LeftButton, false);
    EXPECT_TRUE(cWidgets::IsCaptured(tool)); // the button that began ends it
    Set(cInput::MiddleButton, false);
    EXPECT_FALSE(cWidgets::IsCaptured());

    cWidgets::FreeWidget(tool, false); // nothing is left to go on with
    EXPECT_EQ(g_RepeatManipulator.Tool, nullptr);
    Set(cInput::MiddleButton, true);
    EXPECT_FALSE(cWidgets::IsCaptured());
}

TEST_F(Manipulators, CoveredOrCapturedElsewhere) {
    auto* tool = Add(new cMoveTool(&Pos));
    MoveTo(tool->Axes[0].GetPoint(0.7f));
    EXPECT_EQ(tool->HotMode, Mode::X);
    EXPECT_TRUE(tool->IsHot(false));
    EXPECT_FALSE(tool->IsHot(true));
    EXPECT_EQ(tool->HotMode, Mode::None);
    auto* holder = new cWidget;
    cWidgets::AddWidget(holder, 3);
    cWidgets::SetCapture(holder);
    EXPECT_FALSE(tool->OnButtonDown(cInput::LeftButton));
}

TEST_F(Manipulators, ObjectsOwnTheirTools) {
    const auto tools = [] {
        int count = 0;
        for (const cWidget* widget : cWidgets::GetLayer(cManipulator::Layer)) {
            count += widget != nullptr;
        }
        return count;
    };
    {
        cPosition position;
        position.Move();
        EXPECT_EQ(g_ManipulatorsType, cManipulator::MoveType);
        EXPECT_EQ(tools(), 1);
        position.Move();
        EXPECT_EQ(tools(), 0);
        position.Move();
        cWidgets::FreeLayer(cManipulator::Layer); // behind its back
        position.OnProcess();
        EXPECT_FALSE(position.HasTools());
        position.Move();
        EXPECT_EQ(tools(), 1);
    }
    EXPECT_EQ(tools(), 0);

    cTransform transform;
    constexpr struct { int Type, Tools; } rows[] = {{0, 0}, {1, 1}, {2, 1}, {3, 1}, {4, 3}, {0, 0}};
    for (const auto& row : rows) {
        g_ManipulatorsType = row.Type;
        transform.CreateTools();
        EXPECT_EQ(tools(), row.Tools);
    }
    g_ManipulatorsType = cManipulator::MoveType;
    transform.CreateTools();
    transform.SetParentTransform(cMat4::Translation(0, 2, 0));
    transform.OnProcess();
    cMoveTool* tool = nullptr;
    for (cWidget* widget : cWidgets::GetLayer(cManipulator::Layer)) {
        tool = widget ? dynamic_cast<cMoveTool*>(widget) : tool;
    }
    ASSERT_TRUE(tool && tool->CalcFrame());
    ExpectNear(tool->Center, {0, 2, 0}, 2e-3f);
    const cVec3 from = tool->Axes[0].GetPoint(0.7f);
    Drag(from, from + cVec3(1.5f, 0, 0));
    ExpectNear(transform.Translate, {1.5f, 0, 0}, 2e-3f);
    cWidgets::Render(-1);
    MoveTo(tool->Axes[0].GetPoint(0.7f));
    Set(cInput::LeftButton, true);
    transform.FreeTools(); // in the middle of a drag
    EXPECT_FALSE(cWidgets::IsCaptured());
    MoveTo(from);
    EXPECT_EQ(tools(), 0);
}
